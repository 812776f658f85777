#include <QRegularExpression>
#include <QXmlStreamWriter>
#include <utility>

#include "Chains.h"

namespace {

using Attributes = std::initializer_list<std::pair<const char*, QString>>;

const QString AtItemStart = QStringLiteral("(?<!\\S)");
const QString AtItemEnd = QStringLiteral("(?!\\S)");

class Writer {
  public:
    explicit Writer(QString* text) : m_xml(text) { m_xml.setAutoFormatting(true); }

    QXmlStreamWriter& xml() { return m_xml; }

    void empty(const char* name, Attributes attributes) {
        m_xml.writeEmptyElement(QString::fromLatin1(name));
        write(attributes);
    }
    void begin(const char* name, Attributes attributes = {}) {
        m_xml.writeStartElement(QString::fromLatin1(name));
        write(attributes);
    }
    void end() { m_xml.writeEndElement(); }

    void beginContext(const QString& name, const QString& attribute) {
        begin(
            "context",
            {{"name", name}, {"attribute", attribute}, {"lineEndContext", QStringLiteral("#pop")}});
    }
    void pattern(const QString& attribute, const QString& expression, const QString& context) {
        empty("RegExpr", {{"attribute", attribute},
                          {"String", expression},
                          {"insensitive", QStringLiteral("true")},
                          {"context", context}});
    }
    /// The first item of a line.
    void first(const QString& attribute, const QString& expression, const QString& context) {
        empty("RegExpr", {{"attribute", attribute},
                          {"String", expression},
                          {"insensitive", QStringLiteral("true")},
                          {"firstNonSpace", QStringLiteral("true")},
                          {"context", context}});
    }
    /// A line that goes on in the next, and what begins there.
    void continuation() {
        empty("LineContinue", {{"attribute", QStringLiteral("Continuation")},
                               {"context", QStringLiteral("#stay")}});
        pattern(QStringLiteral("Normal Text"), QStringLiteral("^\\s+"), QStringLiteral("#stay"));
    }

  private:
    QXmlStreamWriter m_xml;

    void write(Attributes attributes) {
        for (const auto& [key, value] : attributes) {
            m_xml.writeAttribute(QString::fromLatin1(key), value);
        }
    }
};

QString attributeOf(Place::Style style) {
    switch (style) {
        case Place::Style::File:
            return QStringLiteral("File");
        case Place::Style::Name:
            return QStringLiteral("Placeholder");
        default:
            return QStringLiteral("Text");
    }
}

QString contextOf(const Chain& chain) {
    return chain.places.isEmpty() ? QStringLiteral("Surplus") : chain.name();
}

void writeLists(Writer& out, const std::vector<Group>& commands) {
    for (const Group& group : commands) {
        out.begin("list", {{"name", QStringLiteral("awaits ") + contextOf(group.chain)}});
        for (const QString& word : group.words) {
            out.xml().writeTextElement(QStringLiteral("item"), word);
        }
        out.end();
    }
}

void writeLines(Writer& out, const std::vector<Group>& commands) {
    out.begin("context", {{"name", QStringLiteral("Lines")},
                          {"attribute", QStringLiteral("Normal Text")},
                          {"lineEndContext", QStringLiteral("#stay")}});
    out.empty("RegExpr", {{"attribute", QStringLiteral("Remark")},
                          {"String", QStringLiteral(":rem_start") + AtItemEnd},
                          {"firstNonSpace", QStringLiteral("true")},
                          {"insensitive", QStringLiteral("true")},
                          {"context", QStringLiteral("Remark")},
                          {"beginRegion", QStringLiteral("remark")}});
    for (const Group& group : controlGroups()) {
        out.first(QStringLiteral("Control"), group.words.first() + AtItemEnd,
                  QStringLiteral("Behind ") + contextOf(group.chain));
    }
    for (const Group& group : commands) {
        out.empty("keyword", {{"attribute", QStringLiteral("Command")},
                              {"String", QStringLiteral("awaits ") + contextOf(group.chain)},
                              {"firstNonSpace", QStringLiteral("true")},
                              {"context", QStringLiteral("Behind ") + contextOf(group.chain)}});
    }
    out.empty("IncludeRules", {{"context", QStringLiteral("Placeholders")}});
    out.first(QStringLiteral("Error"), QStringLiteral("\\S+"), QStringLiteral("#stay"));
    out.end();
}

void writeShared(Writer& out) {
    out.begin("context", {{"name", QStringLiteral("Remark")},
                          {"attribute", QStringLiteral("Remark")},
                          {"lineEndContext", QStringLiteral("#stay")}});
    out.empty("RegExpr", {{"attribute", QStringLiteral("Remark")},
                          {"String", QStringLiteral(":rem_end") + AtItemEnd},
                          {"firstNonSpace", QStringLiteral("true")},
                          {"insensitive", QStringLiteral("true")},
                          {"context", QStringLiteral("#pop")},
                          {"endRegion", QStringLiteral("remark")}});
    out.end();
    out.beginContext(QStringLiteral("Placeholders"), QStringLiteral("Normal Text"));
    for (const QString& name : {Replaced, LoopValue}) {
        out.empty("RegExpr", {{"attribute", QStringLiteral("Placeholder")},
                              {"String", name},
                              {"context", QStringLiteral("#stay")}});
    }
    out.end();
    out.beginContext(QStringLiteral("Quoted"), QStringLiteral("Text"));
    out.empty("IncludeRules", {{"context", QStringLiteral("Placeholders")}});
    out.pattern(QStringLiteral("Text"), QStringLiteral("\""), QStringLiteral("#pop"));
    out.end();
    out.beginContext(QStringLiteral("Surplus"), QStringLiteral("Error"));
    out.continuation();
    out.end();
}

void writePlace(Writer& out, const Place& place) {
    out.beginContext(QStringLiteral("Place ") + place.id, attributeOf(place.style));
    out.pattern(QStringLiteral("Text"), AtItemStart + QLatin1Char('"'), QStringLiteral("Quoted"));
    if (!place.words.isEmpty()) {
        QStringList escaped;
        for (const QString& word : place.words) {
            escaped << QRegularExpression::escape(word);
        }
        const QString any = QStringLiteral("(?:%1)").arg(escaped.join(QLatin1Char('|')));
        out.pattern(QStringLiteral("Word"), AtItemStart + any + AtItemEnd, QStringLiteral("#stay"));
    }
    if (place.isNumber) {
        out.pattern(QStringLiteral("Number"), AtItemStart + Number + AtItemEnd,
                    QStringLiteral("#stay"));
    }
    out.empty("IncludeRules", {{"context", QStringLiteral("Placeholders")}});
    out.end();
}

void writeChains(Writer& out, const std::vector<Place>& all, const std::vector<Group>& groups) {
    const QString blank = QStringLiteral("\\s+(?=\\S)");
    const QString normal = QStringLiteral("Normal Text");
    QStringList begun;
    for (const Group& group : groups) {
        const QString name = QStringLiteral("Behind ") + contextOf(group.chain);
        if (!begun.contains(name)) {
            begun << name;
            out.beginContext(name, normal);
            out.continuation();
            out.pattern(normal, blank, QStringLiteral("#pop!") + contextOf(group.chain));
            out.end();
        }
    }
    for (const Chain& chain : chainsOf(groups)) {
        const Place& place = placeOf(all, chain.places.first());
        out.beginContext(chain.name(), attributeOf(place.style));
        out.continuation();
        out.pattern(normal, blank,
                    chain.next().name() == chain.name()
                        ? QStringLiteral("#stay")
                        : QStringLiteral("#pop!") + contextOf(chain.next()));
        out.empty("IncludeRules", {{"context", QStringLiteral("Place ") + place.id}});
        out.end();
    }
}

void writeStyles(Writer& out) {
    const std::pair<const char*, const char*> styles[] = {{"Normal Text", "dsNormal"},
                                                          {"Command", "dsFunction"},
                                                          {"Control", "dsControlFlow"},
                                                          {"Remark", "dsComment"},
                                                          {"Number", "dsDecVal"},
                                                          {"Word", "dsConstant"},
                                                          {"File", "dsString"},
                                                          {"Text", "dsVerbatimString"},
                                                          {"Placeholder", "dsVariable"},
                                                          {"Error", "dsError"},
                                                          {"Continuation", "dsSpecialChar"}};
    out.begin("itemDatas");
    for (const auto& [name, style] : styles) {
        out.empty("itemData", {{"name", QString::fromLatin1(name)},
                               {"defStyleNum", QString::fromLatin1(style)}});
    }
    out.end();
}

}  // namespace

QString kateSyntax() {
    const std::vector<Group> commands = commandGroups();
    std::vector<Group> groups = controlGroups();
    groups.insert(groups.end(), commands.begin(), commands.end());
    const std::vector<Place> all = places();
    QString text;
    Writer out(&text);
    out.xml().writeStartDocument();
    out.xml().writeDTD(QStringLiteral("<!DOCTYPE language>"));
    // Others whose files are named .bat come first. The version grows with each command.
    out.begin("language", {{"name", QStringLiteral("Tarnwick Batch")},
                           {"section", QStringLiteral("Scientific")},
                           {"version", QString::number(commandTable().back().id)},
                           {"kateversion", QStringLiteral("5.0")},
                           {"extensions", QStringLiteral("*.bat")},
                           {"priority", QStringLiteral("-10")},
                           {"casesensitive", QStringLiteral("0")},
                           {"author", QStringLiteral("The Tarnwick developers")},
                           {"license", QStringLiteral("MIT")}});
    out.begin("highlighting");
    writeLists(out, commands);
    out.begin("contexts");
    writeLines(out, commands);  // the first context is where a file begins
    writeShared(out);
    for (const Place& place : all) {
        writePlace(out, place);
    }
    writeChains(out, all, groups);
    out.end();
    writeStyles(out);
    out.end();
    out.begin("general");
    out.empty("keywords", {{"casesensitive", QStringLiteral("0")}});
    out.end();
    out.end();
    out.xml().writeEndDocument();
    return text;
}
