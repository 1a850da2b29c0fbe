#include "userimport/ColumnMapping.h"

#include "Messages.h"

#include <QHash>

namespace sable {
namespace {

// Further names of each field besides its own header, already in the normalised form.
QStringList aliases(int field)
{
    switch (field) {
    case ColMemberID:
        return {QStringLiteral("memberid"), QStringLiteral("id"), QStringLiteral("loginid"), QStringLiteral("login"),
            QStringLiteral("userid"), QStringLiteral("사용자아이디")};
    case ColMemberName:
        return {QStringLiteral("membername"), QStringLiteral("name"), QStringLiteral("fullname"),
            QStringLiteral("displayname"), QStringLiteral("성명")};
    case ColPasswd:
        return {QStringLiteral("passwd"), QStringLiteral("password"), QStringLiteral("pw"), QStringLiteral("pwd"),
            QStringLiteral("암호")};
    case ColGender:
        return {QStringLiteral("gender"), QStringLiteral("sex")};
    case ColAdmin:
        return {QStringLiteral("badmin"), QStringLiteral("admin"), QStringLiteral("notice")};
    case ColEmail:
        return {QStringLiteral("email"), QStringLiteral("mail"), QStringLiteral("emailaddress"), QStringLiteral("메일"),
            QStringLiteral("전자우편")};
    case ColHP:
        return {QStringLiteral("hp"), QStringLiteral("mobile"), QStringLiteral("mobilephone"),
            QStringLiteral("cellphone"), QStringLiteral("휴대전화"), QStringLiteral("핸드폰")};
    case ColOfficePhone:
        return {QStringLiteral("officephone"), QStringLiteral("office"), QStringLiteral("workphone"),
            QStringLiteral("사무실전화"), QStringLiteral("직장전화")};
    case ColAddress:
        return {QStringLiteral("address")};
    case ColHomePhone:
        return {QStringLiteral("homephone"), QStringLiteral("phone"), QStringLiteral("telephone"),
            QStringLiteral("집전화")};
    case ColBirthDay:
        return {QStringLiteral("birthday"), QStringLiteral("birthdate"), QStringLiteral("dateofbirth"),
            QStringLiteral("생일")};
    case ColDescription:
        return {QStringLiteral("description"), QStringLiteral("introduction"), QStringLiteral("소개")};
    case ColSolar:
        return {QStringLiteral("bsolar"), QStringLiteral("solar"), QStringLiteral("양력")};
    case ColPublic:
        return {QStringLiteral("bpublic"), QStringLiteral("public"), QStringLiteral("공개")};
    case FieldDepartment:
        return {QStringLiteral("department"), QStringLiteral("dept"), QStringLiteral("group"),
            QStringLiteral("groupname"), QStringLiteral("소속")};
    case FieldRank:
        return {QStringLiteral("rank"), QStringLiteral("rankname"), QStringLiteral("title"), QStringLiteral("jobtitle"),
            QStringLiteral("직위")};
    default:
        return {};
    }
}

QString normalised(const QString& header)
{
    QString out;
    out.reserve(header.size());
    for (const QChar ch : header) {
        if (!ch.isSpace() && ch != u'_' && ch != u'-' && ch != u'.')
            out += ch.toLower();
    }
    return out;
}

} // namespace

ColumnMapping::ColumnMapping()
{
    m_columns.fill(-1);
}

ColumnMapping ColumnMapping::matchHeaders(const QStringList& headers)
{
    QHash<QString, int> fieldByName;
    for (int field = 0; field < ImportFieldCount; ++field) {
        fieldByName.insert(normalised(fieldName(field)), field);
        for (const QString& alias : aliases(field))
            fieldByName.insert(alias, field);
    }
    ColumnMapping mapping;
    for (int column = 0; column < headers.size(); ++column) {
        const int field = fieldByName.value(normalised(headers[column]), -1);
        if (field >= 0 && !mapping.isMapped(field))
            mapping.m_columns[static_cast<size_t>(field)] = column;
    }
    return mapping;
}

ColumnMapping ColumnMapping::byPosition(int columnCount)
{
    ColumnMapping mapping;
    for (int field = 0; field < std::min<int>(columnCount, ImportFieldCount); ++field)
        mapping.m_columns[static_cast<size_t>(field)] = field;
    return mapping;
}

QString ColumnMapping::fieldName(int field)
{
    if (field == FieldDepartment)
        return Msg::kImportDepartmentField;
    if (field == FieldRank)
        return Msg::kImportRankField;
    return MemberColumns::header(field);
}

void ColumnMapping::setColumn(int field, int column)
{
    if (column >= 0) {
        for (int& other : m_columns) {
            if (other == column)
                other = -1;
        }
    }
    m_columns[static_cast<size_t>(field)] = column;
}

} // namespace sable
