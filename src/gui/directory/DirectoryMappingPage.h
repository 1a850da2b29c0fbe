#pragma once

#include "directory/DirectorySettings.h"

#include <QWidget>

#include <array>

class QButtonGroup;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace sable {

// Which attributes feed which member fields, where departments and ranks come from, who counts
// as a leaver, and the new users' passwords; all editable, with the presets of Active Directory
// and OpenLDAP to start from.
class DirectoryMappingPage final : public QWidget
{
    Q_OBJECT

public:
    explicit DirectoryMappingPage(QWidget* parent = nullptr);

    void load(const DirectorySettings& settings);
    void store(DirectorySettings& settings) const;

Q_SIGNALS:
    // A preset was applied: it also brings its user filter, which lives on the connection page.
    void presetApplied(const QString& userFilter);

private:
    QWidget* makeAttributes();
    QWidget* makeDepartments();
    QWidget* makeLeavers();
    QWidget* makePasswords();
    void applyPreset();

    QComboBox* m_preset;
    std::array<QLineEdit*, MemberColumnCount> m_attributes {};
    QLineEdit* m_uniqueId = nullptr;
    QButtonGroup* m_departmentSource = nullptr;
    QLineEdit* m_departmentAttribute = nullptr;
    QLineEdit* m_rankAttribute = nullptr;
    QButtonGroup* m_leaverRule = nullptr;
    QLineEdit* m_leaverFilter = nullptr;
    QSpinBox* m_threshold = nullptr;
    QSpinBox* m_passwordLength = nullptr;
    QLineEdit* m_passwordAlphabet = nullptr;
};

} // namespace sable
