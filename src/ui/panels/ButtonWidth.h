#pragma once

class QAbstractButton;

/// Makes a button as narrow as its text allows: styles give short texts more room, which a narrow
/// panel has not.
void fitToText(QAbstractButton* button);
