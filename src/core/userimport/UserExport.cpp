#include "userimport/UserExport.h"

#include "Messages.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"
#include "platform/PrivateFiles.h"
#include "userimport/ColumnMapping.h"
#include "userimport/Csv.h"
#include "userimport/DepartmentPaths.h"

#include <QSaveFile>

namespace sable::UserExport {
namespace {

// The departments of one member in tree order (as paths of the department cell) and the rank in each.
struct Places
{
    QStringList paths;
    QStringList ranks;
};

QHash<int, Places> placesByMember(const OrgChart& chart, const RankList& ranks)
{
    QHash<const OrgNode*, QString> pathOf;
    QHash<int, Places> places;
    chart.forEachPlacement([&](OrgNode* node) {
        const OrgNode* department = node->parent();
        auto path = pathOf.find(department);
        if (path == pathOf.end()) {
            QStringList names;
            for (const OrgNode* up = department; up && up != chart.invisibleRoot(); up = up->parent())
                names.prepend(up->name());
            path = pathOf.insert(department, DepartmentPaths::joinPath(names));
        }
        Places& member = places[node->memberId()];
        member.paths << *path;
        member.ranks << (ranks.positionOf(node->rankId()) < 0 ? QString() : ranks.nameOf(node->rankId()));
    });
    return places;
}

// One name stands for all the places when they share the rank.
QString ranksCell(const QStringList& ranks)
{
    if (!ranks.isEmpty() && ranks.count(ranks.first()) == ranks.size())
        return DepartmentPaths::joinRanks({ranks.first()});
    return DepartmentPaths::joinRanks(ranks);
}

} // namespace

QByteArray csv(const OrgChart& chart, const RankList& ranks)
{
    constexpr QChar kComma = u',';
    QStringList header;
    for (int field = 0; field < ImportFieldCount; ++field)
        header << ColumnMapping::fieldName(field);
    QByteArray out("\xEF\xBB\xBF");
    out += Csv::line(header, kComma).toUtf8() + "\r\n";

    const QHash<int, Places> places = placesByMember(chart, ranks);
    QStringList fields;
    for (const MemberRecord& member : chart.members()) {
        fields.clear();
        for (int column = 0; column < MemberColumnCount; ++column)
            fields << MemberColumns::text(member, column);
        const auto place = places.constFind(member.K_MemberID);
        if (place == places.cend())
            fields << QString() << QString();
        else
            fields << place->paths.join(u';') << ranksCell(place->ranks);
        out += Csv::line(fields, kComma).toUtf8() + "\r\n";
    }
    return out;
}

bool writeFile(const OrgChart& chart, const RankList& ranks, const QString& path, QString* error)
{
    QSaveFile file(path);
    const QByteArray bytes = csv(chart, ranks);
    // Passwords are among the columns.
    if (!PrivateFiles::open(file) || !PrivateFiles::writeAll(file, bytes.constData(), bytes.size())
        || !PrivateFiles::commit(file)) {
        *error = Msg::kExportCannotWrite.arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace sable::UserExport
