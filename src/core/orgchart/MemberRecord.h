#pragma once

#include <QString>

#include <optional>

namespace sable {

// One user: a row of SD_Member and of the member list.
struct MemberRecord
{
    int K_MemberID = 0;
    QString MemberID;
    QString MemberName;
    QString Passwd;
    int Gender = 0; // 0 male ("남자"), 1 female ("여자")
    bool bPublic = true;
    QString Email;
    QString HP;
    QString Address;
    QString HomePhone;
    QString OfficePhone;
    QString BirthDay;
    QString Description;
    bool bSolar = true; // shown, but always saved as 1
    bool bAdmin = true;

    bool operator==(const MemberRecord&) const = default;
};

// The columns of the member list, in their order on screen.
enum MemberColumn
{
    ColMemberID,
    ColMemberName,
    ColPasswd,
    ColGender,
    ColAdmin,
    ColEmail,
    ColHP,
    ColOfficePhone,
    ColAddress,
    ColHomePhone,
    ColBirthDay,
    ColDescription,
    ColSolar,
    ColPublic,
    MemberColumnCount
};

namespace MemberColumns {

QString header(int column);

// The most stored bytes an edit of the column may hold; 0 when the column has no limit.
int byteLimit(int column);

// The two texts of a choice column (the first stands for the set state), or empty for others.
bool isChoice(int column);
QString choiceText(int column, bool first);

// The text the member list shows in `column`.
QString text(const MemberRecord& member, int column);

// Puts `text` into `column` as an edit of the cell would; a choice column is set when the text is
// its first choice.
void setText(MemberRecord& member, int column, const QString& text);

// The value a choice column stores (Gender 0 or 1, the flags 1 or 0); 0 for other columns.
int storedValue(const MemberRecord& member, int column);

// A birthday as the list shows it ("1985-07-14") from what an administrator types: the same, or
// with dots or slashes ("1985.07.14", "1985. 7. 14.", "1985/7/14"), or digits alone ("19850714").
// nullopt for anything else, or a day that does not exist.
std::optional<QString> birthdayText(const QString& typed);

} // namespace MemberColumns
} // namespace sable
