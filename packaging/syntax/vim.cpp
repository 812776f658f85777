#include "Chains.h"

namespace {

const QString AtItemEnd = QStringLiteral("\\S\\@!");
const QString AtItemStart = QStringLiteral("\\S\\@1<!");

/// For vim's patterns, between slashes.
QString escaped(const QString& word) {
    QString text;
    for (const QChar c : word) {
        text += QStringLiteral("\\/.*[]^$~").contains(c) ? QStringLiteral("\\") + c : QString(c);
    }
    return text;
}

QString anyOf(const QStringList& words) {
    QStringList all;
    for (const QString& word : words) {
        all << escaped(word);
    }
    return QStringLiteral("\\%(%1\\)").arg(all.join(QStringLiteral("\\|")));
}

/// The group of what is awaited first.
QString groupOf(const Chain& chain) {
    return QStringLiteral("tarnwick") +
           (chain.places.isEmpty() ? QStringLiteral("Surplus") : chain.name());
}

/// How what a chain awaits follows, in this line or, behind a backslash, in the next.
QString followedBy(const Chain& chain) {
    return QStringLiteral(" nextgroup=%1,%1_Next skipwhite").arg(groupOf(chain));
}

QString continuationOf(const Chain& chain) {
    return QStringLiteral(
               "syn match %1_Next /\\\\\\s*$/ contained nextgroup=%1,%1_Next skipwhite skipnl\n"
               "hi def link %1_Next Special\n")
        .arg(groupOf(chain));
}

QString linkOf(Place::Style style) {
    switch (style) {
        case Place::Style::File:
            return QStringLiteral("String");
        case Place::Style::Name:
            return QStringLiteral("Identifier");
        default:
            return QStringLiteral("Normal");
    }
}

QString itemsOf(const Place& place) {
    QString text;
    if (!place.words.isEmpty()) {
        text += QStringLiteral(
                    "syn match tarnwickWord_%1 /%2%3%4/ contained\n"
                    "hi def link tarnwickWord_%1 Constant\n")
                    .arg(place.id, AtItemStart, anyOf(place.words), AtItemEnd);
    }
    return text;
}

QString chainLines(const Chain& chain, const Place& place) {
    QString parts = QStringLiteral("tarnwickPlaceholder,tarnwickQuoted");
    if (!place.words.isEmpty()) {
        parts += QStringLiteral(",tarnwickWord_") + place.id;
    }
    if (place.isNumber) {
        parts += QStringLiteral(",tarnwickNumber");
    }
    // An item in quotes, or up to white space, but not the backslash at the end of the line.
    return QStringLiteral(
               "syn match %1 /\\%(\\\\\\s*$\\)\\@!\\%(\"[^\"]*\"\\?\\|[^\" \\t]\\S*\\)/ contained "
               "contains=%2%3\n")
               .arg(groupOf(chain), parts, followedBy(chain.next())) +
           QStringLiteral("hi def link %1 %2\n").arg(groupOf(chain), linkOf(place.style));
}

QString linesOf(const Group& group, const char* link) {
    const QString name = QString::fromLatin1(link) + QLatin1Char('_') + groupOf(group.chain).mid(8);
    return QStringLiteral(
               "syn match tarnwick%1 /^\\s*\\zs%2%3/%4\n"
               "hi def link tarnwick%1 %5\n")
        .arg(name, anyOf(group.words), AtItemEnd, followedBy(group.chain),
             QString::fromLatin1(link));
}

}  // namespace

QString vimSyntax() {
    const std::vector<Group> commands = commandGroups();
    const std::vector<Group> controls = controlGroups();
    const std::vector<Place> all = places();
    QString text = QStringLiteral(
        "\" Vim syntax file. Language: batches of Tarnwick\n"
        "if exists('b:current_syntax')\n"
        "  finish\n"
        "endif\n"
        "syn case ignore\n"
        "syn sync fromstart\n"
        "syn match tarnwickUnknown /^\\s*\\zs\\S\\+/ contains=tarnwickPlaceholder\n"
        "syn match tarnwickSurplus /\\%(\\\\\\s*$\\)\\@!\\S.*/ contained\n"
        "syn match tarnwickPlaceholder /%[a-z][a-z0-9_]*%\\?/ contained\n"
        "syn match tarnwickQuoted /\\S\\@1<!\"[^\"]*\"\\?/ contained contains=tarnwickPlaceholder\n"
        "syn match tarnwickNumber "
        "/\\S\\@1<![-+]\\?\\%(\\d\\+\\.\\?\\d*\\|\\.\\d\\+\\)\\%(e[-+]\\?\\d\\+\\)\\?\\S\\@!/ "
        "contained\n"
        "syn region tarnwickRemark start=/^\\s*:rem_start\\S\\@!/ end=/^\\s*:rem_end\\S\\@!/\n"
        "hi def link tarnwickUnknown Error\n"
        "hi def link tarnwickSurplus Error\n"
        "hi def link tarnwickPlaceholder Identifier\n"
        "hi def link tarnwickQuoted String\n"
        "hi def link tarnwickNumber Number\n"
        "hi def link tarnwickRemark Comment\n");
    std::vector<Group> groups = controls;
    groups.insert(groups.end(), commands.begin(), commands.end());
    for (const Place& place : all) {
        text += itemsOf(place);
    }
    text += continuationOf({});
    for (const Chain& chain : chainsOf(groups)) {
        text += chainLines(chain, placeOf(all, chain.places.first())) + continuationOf(chain);
    }
    for (const Group& group : controls) {
        text += linesOf(group, "Statement");
    }
    for (const Group& group : commands) {
        text += linesOf(group, "Function");
    }
    return text + QStringLiteral("let b:current_syntax = 'tarnwick'\n");
}

QString vimDetection() {
    QStringList words;
    for (const Group& group : commandGroups()) {
        words += group.words;
    }
    return QStringLiteral(
               "\" Batches of Tarnwick among other files named .bat: by a command in the first "
               "lines.\n"
               "function! s:Detect() abort\n"
               "  if match(getline(1, 200), '\\c^\\s*%1\\(\\s\\|$\\)') >= 0\n"
               "    set filetype=tarnwick\n"
               "  endif\n"
               "endfunction\n"
               "autocmd BufNewFile,BufRead *.bat call s:Detect()\n")
        .arg(anyOf(words));
}
