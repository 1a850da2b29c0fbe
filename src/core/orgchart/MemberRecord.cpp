#include "orgchart/MemberRecord.h"

#include <QDate>
#include <QRegularExpression>

#include <array>

namespace sable::MemberColumns {
namespace {

struct ColumnInfo
{
    const char16_t* header;
    int byteLimit;
    const char16_t* firstChoice;
    const char16_t* secondChoice;
};

constexpr std::array<ColumnInfo, MemberColumnCount> kColumns = {{
    {u"아이디", 20, nullptr, nullptr},
    {u"이름", 20, nullptr, nullptr},
    {u"비밀번호", 20, nullptr, nullptr},
    {u"성별", 0, u"남자", u"여자"},
    {u"공지권한", 0, u"있음", u"없음"},
    {u"이메일", 100, nullptr, nullptr},
    {u"휴대폰", 13, nullptr, nullptr},
    {u"회사전화", 0, nullptr, nullptr},
    {u"주소", 100, nullptr, nullptr},
    {u"전화번호", 20, nullptr, nullptr},
    {u"생년월일", 0, nullptr, nullptr},
    {u"자기소개", 0, nullptr, nullptr},
    {u"양력여부", 0, u"양력", u"음력"},
    {u"정보 공개", 0, u"공개", u"비공개"},
}};

bool valid(int column)
{
    return column >= 0 && column < MemberColumnCount;
}

QString* textField(MemberRecord& member, int column)
{
    switch (column) {
    case ColMemberID:
        return &member.MemberID;
    case ColMemberName:
        return &member.MemberName;
    case ColPasswd:
        return &member.Passwd;
    case ColEmail:
        return &member.Email;
    case ColHP:
        return &member.HP;
    case ColOfficePhone:
        return &member.OfficePhone;
    case ColAddress:
        return &member.Address;
    case ColHomePhone:
        return &member.HomePhone;
    case ColBirthDay:
        return &member.BirthDay;
    case ColDescription:
        return &member.Description;
    default:
        return nullptr;
    }
}

bool choiceValue(const MemberRecord& member, int column)
{
    switch (column) {
    case ColGender:
        return member.Gender == 0;
    case ColAdmin:
        return member.bAdmin;
    case ColSolar:
        return member.bSolar;
    case ColPublic:
        return member.bPublic;
    default:
        return false;
    }
}

} // namespace

QString header(int column)
{
    return valid(column) ? QString::fromUtf16(kColumns[static_cast<size_t>(column)].header) : QString();
}

int byteLimit(int column)
{
    return valid(column) ? kColumns[static_cast<size_t>(column)].byteLimit : 0;
}

bool isChoice(int column)
{
    return valid(column) && kColumns[static_cast<size_t>(column)].firstChoice != nullptr;
}

QString choiceText(int column, bool first)
{
    if (!isChoice(column))
        return {};
    const ColumnInfo& info = kColumns[static_cast<size_t>(column)];
    return QString::fromUtf16(first ? info.firstChoice : info.secondChoice);
}

QString text(const MemberRecord& member, int column)
{
    if (isChoice(column))
        return choiceText(column, choiceValue(member, column));
    QString* field = textField(const_cast<MemberRecord&>(member), column);
    return field ? *field : QString();
}

void setText(MemberRecord& member, int column, const QString& text)
{
    if (QString* field = textField(member, column)) {
        *field = text;
        return;
    }
    const bool set = text == choiceText(column, true);
    switch (column) {
    case ColGender:
        member.Gender = set ? 0 : 1;
        break;
    case ColAdmin:
        member.bAdmin = set;
        break;
    case ColSolar:
        member.bSolar = set;
        break;
    case ColPublic:
        member.bPublic = set;
        break;
    default:
        break;
    }
}

int storedValue(const MemberRecord& member, int column)
{
    if (column == ColGender)
        return member.Gender;
    return isChoice(column) && choiceValue(member, column) ? 1 : 0;
}

std::optional<QString> birthdayText(const QString& typed)
{
    static const QRegularExpression separated(
        QStringLiteral("^\\s*(\\d{4})\\s*([-./])\\s*(\\d{1,2})\\s*\\2\\s*(\\d{1,2})\\s*\\.?\\s*$"));
    static const QRegularExpression digits(QStringLiteral("^\\s*(\\d{4})(\\d{2})(\\d{2})\\s*$"));
    QRegularExpressionMatch match = separated.match(typed);
    int day = 4;
    if (!match.hasMatch()) {
        match = digits.match(typed);
        day = 3;
    }
    if (!match.hasMatch())
        return std::nullopt;
    const QDate date(match.captured(1).toInt(), match.captured(day - 1).toInt(), match.captured(day).toInt());
    if (!date.isValid())
        return std::nullopt;
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

} // namespace sable::MemberColumns
