// Import and export of users on a large chart, beside a reference measured in the same run: a plain
// parse of the same file (decode, split at line ends and commas, no quoting and no rules). Reading,
// previewing and applying 100,000 new users into a chart of 100,000 must stay under 5 s.
// usage: bench_import [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "document/CSableManagerDoc.h"
#include "document/ImportEdits.h"
#include "userimport/ImportPreview.h"
#include "userimport/UserExport.h"

#include <QCoreApplication>

using namespace sable;
using namespace sable::bench;

namespace {

constexpr double kBoundSeconds = 5.0;

QStringList departmentPaths(const OrgChart& chart)
{
    QStringList paths;
    chart.forEachGroup([&](OrgNode* group) { paths << chart.departmentPath(group); });
    return paths;
}

// New users, most in existing departments with existing ranks; one in fifty in one of about a
// hundred new three-level departments, one in a hundred with one of ten new ranks.
QByteArray newUsersFile(const CSableManagerDoc& doc, int count)
{
    const QStringList paths = departmentPaths(doc.chart());
    const QString top = doc.chart().rootGroup()->name();
    QByteArray out = "아이디,이름,비밀번호,성별,이메일,휴대폰,회사전화,주소,생년월일,부서,직급\r\n";
    for (int i = 0; i < count; ++i) {
        const QString id = QStringLiteral("new%1").arg(i, 6, 10, QLatin1Char('0'));
        const QString department = i % 50 == 0
            ? QStringLiteral("%1/신설본부 %2/팀 %3/조 %4").arg(top).arg(i / 50 % 5).arg(i / 50 % 20).arg(i / 50 % 100)
            : paths[i % paths.size()];
        const QString rank = i % 100 == 0 ? QStringLiteral("신규직급 %1").arg(i / 100 % 10)
                                          : doc.ranks().at(i % doc.ranks().count()).RankName;
        const QStringList fields {id, QStringLiteral("신입사원"), QStringLiteral("pw%1").arg(i),
            i % 2 ? QStringLiteral("여자") : QStringLiteral("남자"), id + QStringLiteral("@example.com"),
            QStringLiteral("010-5%1").arg(i, 3, 10, QLatin1Char('0')).left(13),
            QStringLiteral("02-3700-%1").arg(i % 10000), QStringLiteral("서울특별시 중구 세종대로 110"),
            QStringLiteral("1990-01-01"), department, rank};
        out += Csv::line(fields, u',').toUtf8() + "\r\n";
    }
    return out;
}

// The reference: what any reader of such a file must do at least.
qsizetype plainParse(const QByteArray& bytes)
{
    qsizetype cells = 0;
    const QString text = QString::fromUtf8(bytes);
    for (const QStringView line : QStringView(text).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts)) {
        const QList<QStringView> fields = line.split(u',');
        for (const QStringView field : fields)
            cells += field.toString().isEmpty() ? 0 : 1;
    }
    return cells;
}

ImportTable readTable(const QByteArray& bytes)
{
    QString error;
    std::optional<ImportTable> table = ImportTableReader::read(bytes, {}, &error);
    if (!table)
        qFatal("%s", qPrintable(error));
    return std::move(*table);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    const qsizetype scaleAt = args.indexOf(QStringLiteral("--scale"));
    const double scale = scaleAt > 0 && scaleAt + 1 < args.size() ? args[scaleAt + 1].toDouble() : 1.0;
    ChartSize size;
    for (int* value : {&size.members, &size.departments, &size.memberships})
        *value = std::max(1, static_cast<int>(*value * scale));
    Report report(out, 46);

    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments, "
        << doc.chart().placementCount() << " memberships\n";

    const QByteArray file = newUsersFile(doc, size.members);
    out << "file of new users: " << size.members << " rows, " << file.size() / 1024 << " KiB\n";
    report.measure(QStringLiteral("reference: plain parse of the file"), [&] { plainParse(file); });

    // New users: the figure that has a bound.
    ImportTable table;
    std::unique_ptr<ImportPreview> preview;
    double total = report.measure(QStringLiteral("read (detect, decode, parse)"), [&] { table = readTable(file); });
    total += report.measure(QStringLiteral("preview"), [&] {
        preview = std::make_unique<ImportPreview>(ImportPreview::make(
            doc.chart(), doc.ranks(), table, ColumnMapping::matchHeaders(table.columns), ImportMode::AddOnly));
    });
    out << "  new " << preview->count(ImportRow::Fate::New) << ", refused " << preview->count(ImportRow::Fate::Refused)
        << ", new departments " << preview->newDepartmentPaths().size() << ", new ranks "
        << preview->newRankNames().size() << '\n';
    total += report.measure(QStringLiteral("apply as one step"), [&] { ImportEdits::apply(doc, *preview); });
    out << QStringLiteral("read, preview and apply %1 new users: %2 ms (bound: %3 ms)\n")
               .arg(size.members)
               .arg(total * 1000, 0, 'f', 1)
               .arg(kBoundSeconds * 1000, 0, 'f', 0);
    report.measure(QStringLiteral("  undo"), [&] { doc.history().undo(); });
    report.measure(QStringLiteral("  redo"), [&] { doc.history().redo(); });

    // The export of everything, read back: every row unchanged.
    QByteArray exported;
    report.measure(
        QStringLiteral("export of every user"), [&] { exported = UserExport::csv(doc.chart(), doc.ranks()); });
    out << "  " << doc.chart().memberCount() << " rows, " << exported.size() / 1024 << " KiB\n";
    report.measure(QStringLiteral("reference: plain parse of the export"), [&] { plainParse(exported); });
    report.measure(QStringLiteral("read and preview the export (all unchanged)"), [&] {
        const ImportTable back = readTable(exported);
        ImportPreview::make(
            doc.chart(), doc.ranks(), back, ColumnMapping::matchHeaders(back.columns), ImportMode::AddAndUpdate);
    });

    // Every user updated: a new mobile number for each.
    QByteArray changed = exported;
    changed.replace(",010-", ",011-");
    report.measure(QStringLiteral("read, preview and apply updates of every user"), [&] {
        const ImportTable back = readTable(changed);
        const ImportPreview updates = ImportPreview::make(
            doc.chart(), doc.ranks(), back, ColumnMapping::matchHeaders(back.columns), ImportMode::AddAndUpdate);
        ImportEdits::apply(doc, updates);
    });
    out << QStringLiteral("peak memory: %1 MiB\n").arg(peakMemoryMiB(), 0, 'f', 0);
    return total < kBoundSeconds ? 0 : 1;
}
