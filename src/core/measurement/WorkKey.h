#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include "maps/BinRaster.h"
#include "maps/MapValues.h"
#include "measurement/Result.h"
#include "spectra/XafsSpectrum.h"

/// What the rows of an analysis are made from.
struct WorkKey {
    /// A file that is read for it, and what tells that it has been changed since.
    struct File {
        QString path;
        QString state;
    };

    QString kind;     ///< of work, such as "fit"; "mean" for the search for the mean spectrum
    QByteArray rows;  ///< SHA-256 of everything that the rows depend on
    /// The same but for the states of the files, and what has come out of them: which job it is,
    /// whatever has been written to its files.
    QByteArray job;
    QVector<File> files;
};

/// What a key is made for; what is not of the run is as it is now, before its rows are made.
struct KeyedWork {
    const Run& run;
    bool isMeanSearch = false;  ///< the search for the mean spectrum that the run begins with
    const BinRaster& raster;
    QVector<XafsSpectrum> spectra;  ///< of the references that take part, or of the standard
    MapValues map;                  ///< the energy shifts in force; empty: none
};

WorkKey keyOf(const KeyedWork& work);
