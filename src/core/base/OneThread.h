#pragma once

// For programs that go through many tiny measurements, such as those that look for faults: the work
// of readers, of the interpreter of batches, of passes and maps is done in the thread that asks for
// it, as where the system gives no other, with the same results. Not for large images: nobody can
// stop it then.

/// From now on; before the first measurement.
void useOneThread();
bool usesOneThread();
