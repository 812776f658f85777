#pragma once

#include <QMetaType>
#include <QStringList>
#include <memory>
#include <vector>

#include "files/FileStamp.h"

class CountFile;
class QImage;
struct FrameReader;

/// One detector frame: unsigned 16-bit counts, where they came from, and a picture of them.
///
/// Created empty, filled once by one reader, then only read. Counts are rows[y][x] with x = 0 ..
/// width - 1; `rows` may be shorter than `height` when reading failed half-way.
struct TiffData {
    explicit TiffData(int pictureFormat = 24);
    ~TiffData();
    TiffData(const TiffData&) = delete;
    TiffData& operator=(const TiffData&) = delete;

    int format;               ///< QImage format of the picture: 13 = RGB888, 24 = Grayscale8
    QString fileName;         ///< set after a successful open
    quint32 width = 0;        ///< pixels a row
    quint32 height = 0;       ///< rows
    qint32 scanlineSize = 0;  ///< bytes a row as the TIFF library reports it
    quint32 min = 0xFFFFFFFFu;
    quint32 max = 0;
    std::vector<quint16*> rows;  ///< owned; one after the other in memory when read from TIFF
    /// Where the counts lie of a frame that was loaded by its header alone; else null. Such a frame
    /// has no rows, and neither min, max nor saturated.
    std::shared_ptr<CountFile> countFile;
    FileStamp stamp;          ///< of the file, just before it was read
    double energy = 0.0;      ///< eV, from the file's name
    uchar* pixels = nullptr;  ///< the picture's memory, owned
    QImage* image = nullptr;  ///< over `pixels`, owned
    bool loaded = false;      ///< the last load() succeeded
    /// Why no stack takes what has been read, in one phrase; empty: it is a frame of counts.
    QString refusal;
    QStringList remarks;    ///< what should be known of it nevertheless, see FrameHeader
    quint64 saturated = 0;  ///< pixels at 65535

    /// Reads an image file of any format of frameReaders(), told by its first bytes. A failure
    /// gives one debug line (none for a TIFF file or a format that is not known) and false.
    bool load(const QString& name);

    /// Reads the header of an IMG file: fills width and height, returns the offset of the pixels
    /// or 0. Refuses every file at present: see ImgFile.cpp.
    int readImgHeader(const QString& name);
    bool readImg(const QString& name);

    /// Reads a TIFF file as one sample of 16 bits a pixel, whatever its tags say. What a damaged
    /// file does not hold reads as 0; frames above Limits::MostPixels are refused, and large ones
    /// of which the file holds less than half.
    bool readTiff(const QString& name);

    /// The picture, made when it is first asked for: most frames of a stack are never looked at,
    /// and making it takes as long as reading the frame. On the thread that owns the frame only.
    /// Null for a frame without pixels.
    const QImage* picture();
    /// Rebuilds the picture: (count - min) / (max - min) through the grey table or the colour map.
    void makeImage();

    /// Forgets the picture, which is then made anew.
    void dropPicture();

    /// Frees every row.
    void clearRows();
    /// The counts are read from countFile when they are needed.
    bool isInFile() const { return countFile != nullptr && rows.empty(); }

    /// Plain sum of the counts over (2|halfWidth| + 1) x (2|halfHeight| + 1) pixels around (x, y);
    /// pixels outside the frame count 0.
    double boxSum(int x, int y, int halfWidth, int halfHeight) const;

    /// A row of `bytes` bytes set to 0, appended to rows; null when memory runs out.
    quint16* appendRow(std::size_t bytes);
    /// Replaces the rows by `height` rows of `bytes` bytes (an even number) in one piece of memory,
    /// which is not cleared; without rows when memory runs out.
    void makeRows(std::size_t bytes);
    /// Before the first count: min, max and saturated.
    void startCounts();
    /// Widens min and max with the first `width` counts of a row, and counts those at 65535.
    void foldIn(const quint16* row) { foldIn(row, width); }
    void foldIn(const quint16* counts, std::size_t n);

  private:
    bool readThrough(const FrameReader& reader, const QString& name);

    std::shared_ptr<quint16> m_block;  // the first m_blockRows rows lie in here
    std::size_t m_blockRows = 0;
};

Q_DECLARE_METATYPE(TiffData*)
