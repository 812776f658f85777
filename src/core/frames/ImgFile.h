#pragma once

class QIODevice;
struct TiffData;

/// Reads the comment of an IMG file: `length` characters of items separated by commas, from the
/// device's place. "Prop_ImageWidth=" and "Prop_ImageHeight=" set the frame's width and height
/// (the first word after the key; no number: 0). An item after the last comma is not looked at.
/// False when the text ends early.
bool readImgComment(QIODevice& in, int length, TiffData* frame);
