#include "output/ColumnTable.h"

#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

constexpr int Digits = 12;

QString inOneLine(QString text) {
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '))
        .replace(QLatin1Char('\r'), QLatin1Char(' '));
}

}  // namespace

bool writeColumnTable(const QString& fileName, const ColumnTable& table) {
    WholeDevice file(fileName);
    if (!file.open()) {
        return false;
    }
    QString head;
    for (const HeaderLine& line : table.head) {
        head += QStringLiteral("# ") + line.name + QStringLiteral(" = ") + inOneLine(line.value) +
                QLatin1Char('\n');
    }
    head += QStringLiteral("# ") + table.names.join(QLatin1Char('\t')) + QLatin1Char('\n');
    file.write(head.toUtf8());
    const std::size_t rows = table.columns.empty() ? 0 : table.columns.front().size();
    for (std::size_t row = 0; row < rows; ++row) {
        QByteArray text;
        for (const std::vector<double>& column : table.columns) {
            text += text.isEmpty() ? "" : "\t";
            text += QByteArray::number(column[row], 'g', Digits);
        }
        file.write(text + '\n');
    }
    return file.putInPlace() && noteSaved(fileName);
}
