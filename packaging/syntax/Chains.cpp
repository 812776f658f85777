#include "Chains.h"

#include <algorithm>

#include "batch/ArgumentWords.h"

namespace {

using Style = Place::Style;

struct KindName {
    ArgKind kind;
    const char* id;
    Style style = Style::Text;
};

/// Kinds that look alike share an id.
constexpr KindName KindNames[] = {
    {ArgKind::Integer, "Number"},
    {ArgKind::Flag, "Number"},
    {ArgKind::Real, "Number"},
    {ArgKind::Text, "Text"},
    {ArgKind::Mode, "Mode"},
    {ArgKind::InFile, "File", Style::File},
    {ArgKind::OutFile, "File", Style::File},
    {ArgKind::Directory, "File", Style::File},
    {ArgKind::Pattern, "File", Style::File},
    {ArgKind::VictreenWord, "Victreen"},
    {ArgKind::Stack, "Stack"},
    {ArgKind::Unit, "Unit"},
    {ArgKind::Background, "Background"},
    {ArgKind::Edge, "Edge"},
    {ArgKind::Scale, "Scale"},
    {ArgKind::Crystal, "Crystal"},
    {ArgKind::Constraints, "Constraints"},
    {ArgKind::MapName, "Map"},
    {ArgKind::MaskLimit, "Mask"},
    {ArgKind::RangeOf, "RangeOf"},
    {ArgKind::RangeEnd, "RangeEnd"},
    {ArgKind::Viewed, "Viewed"},
    {ArgKind::ScaleName, "Colours"},
    {ArgKind::Reversed, "Reversed"},
    {ArgKind::Channel, "Channel"},
};
static_assert(std::size(KindNames) == static_cast<std::size_t>(ArgKind::Channel) + 1);

QString idOf(ArgKind kind) {
    const auto* const row =
        std::find_if(std::begin(KindNames), std::end(KindNames),
                     [kind](const KindName& name) { return name.kind == kind; });
    return QString::fromLatin1(row->id);
}

bool isSame(const Chain& a, const Chain& b) {
    return a.places == b.places && a.repeats == b.repeats;
}

}  // namespace

QString Chain::name() const {
    return places.join(QLatin1Char('_')) + (repeats ? QStringLiteral("_More") : QString());
}

Chain Chain::next() const {
    return repeats && places.size() == 1 ? *this : Chain{places.mid(1), repeats};
}

std::vector<Place> places() {
    std::vector<Place> all{{QStringLiteral("Loop"), Style::Name, false, {}}};
    for (const KindName& name : KindNames) {
        const QString id = QString::fromLatin1(name.id);
        if (std::none_of(all.begin(), all.end(), [&id](const Place& p) { return p.id == id; })) {
            all.push_back({id, name.style, mayBeNumber(name.kind), argumentWords(name.kind)});
        }
    }
    return all;
}

const Place& placeOf(const std::vector<Place>& all, const QString& id) {
    return *std::find_if(all.begin(), all.end(), [&id](const Place& p) { return p.id == id; });
}

std::vector<Group> commandGroups() {
    std::vector<Group> groups;
    for (const CommandRow& row : commandTable()) {
        Chain chain{{}, row.repeats};
        for (const ArgKind kind : row.args) {
            chain.places << idOf(kind);
        }
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&chain](const Group& g) { return isSame(g.chain, chain); });
        if (group == groups.end()) {
            group = groups.insert(groups.end(), {chain, {}});
        }
        group->words << QString::fromLatin1(row.name);
    }
    return groups;
}

std::vector<Group> controlGroups() {
    const QString loop = QStringLiteral("Loop");
    const QString number = QStringLiteral("Number");
    return {{{{loop, loop, number, number}, false}, {QStringLiteral(":for")}},
            {{{loop}, false}, {QStringLiteral(":next")}},
            {{{QStringLiteral("Text")}, false}, {QStringLiteral(":echo")}}};
}

std::vector<Chain> chainsOf(const std::vector<Group>& groups) {
    std::vector<Chain> chains;
    for (const Group& group : groups) {
        Chain chain = group.chain;
        while (!chain.places.isEmpty() &&
               std::none_of(chains.begin(), chains.end(),
                            [&chain](const Chain& c) { return isSame(c, chain); })) {
            chains.push_back(chain);
            chain = chain.next();
        }
    }
    return chains;
}
