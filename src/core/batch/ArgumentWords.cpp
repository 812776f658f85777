#include "batch/ArgumentWords.h"

#include "base/ColorMap.h"
#include "fitting/ResultKinds.h"
#include "measurement/SettingWords.h"
#include "spectra/Background.h"
#include "spectra/Units.h"

namespace {

QStringList mapNames() {
    QStringList names;
    for (const ResultKind& kind : ResultKinds) {
        names << QString::fromLatin1(kind.name);
    }
    return names;
}

QStringList backgrounds() {
    QStringList words;
    for (int kind = 0; kind < background::Count; ++kind) {
        words << backgroundWord(kind);
    }
    return words;
}

QStringList crystals() {
    QStringList names;
    for (const Crystal& crystal : CrystalTable) {
        names << QString::fromLatin1(crystal.name);
    }
    return names;
}

QStringList colorMaps() {
    QStringList ids{QStringLiteral("stated")};
    for (const ColorScale& scale : colorScales()) {
        ids << QString::fromLatin1(scale.id);
    }
    return ids;
}

QStringList words(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts) {
        list << QString::fromLatin1(text);
    }
    return list;
}

}  // namespace

QStringList argumentWords(ArgKind kind) {
    switch (kind) {
        case ArgKind::Mode:
            return words({"NEW", "ADD"});
        case ArgKind::VictreenWord:
            return words({"VIC"});
        case ArgKind::Stack:
            return words({"I1", "I0"});
        case ArgKind::Unit:
            return words({"eV", "keV"});
        case ArgKind::Background:
            return backgrounds();
        case ArgKind::Edge:
            return words({"each", "mean"});
        case ArgKind::Scale:
            return words({"jump", "none"});
        case ArgKind::Crystal:
            return crystals();
        case ArgKind::Constraints:
            return words({"none", "nonnegative", "sum1", "both"});
        case ArgKind::MapName:
            return mapNames();
        case ArgKind::MaskLimit:
            return words({"off"});
        case ArgKind::RangeOf:
            return mapNames() + words({"maps"});
        case ArgKind::RangeEnd:
            return words({"robust", "full", "stated"});
        case ArgKind::Viewed:
            return mapNames() + words({"maps", "frames"});
        case ArgKind::ScaleName:
            return colorMaps();
        case ArgKind::Reversed:
            return words({"reversed"});
        case ArgKind::Channel:
            return words({"none"});
        case ArgKind::Integer:
        case ArgKind::Flag:
        case ArgKind::Real:
        case ArgKind::Text:
        case ArgKind::InFile:
        case ArgKind::OutFile:
        case ArgKind::Directory:
        case ArgKind::Pattern:
            break;
    }
    return {};
}

bool mayBeNumber(ArgKind kind) {
    switch (kind) {
        case ArgKind::Integer:
        case ArgKind::Flag:
        case ArgKind::Real:
        case ArgKind::VictreenWord:
        case ArgKind::Edge:
        case ArgKind::MaskLimit:
        case ArgKind::RangeOf:
        case ArgKind::RangeEnd:
        case ArgKind::Channel:
            return true;
        default:
            return false;
    }
}
