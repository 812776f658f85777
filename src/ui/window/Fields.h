#pragma once

class QLineEdit;

/// The number in a field; a field with anything else in it returns to its last number.
double numberIn(QLineEdit* field);
