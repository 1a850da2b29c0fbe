#include "directory/DirectoryMappingPage.h"

#include "Messages.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace sable {

DirectoryMappingPage::DirectoryMappingPage(QWidget* parent)
    : QWidget(parent)
    , m_preset(new QComboBox(this))
{
    m_preset->setObjectName(QStringLiteral("preset"));
    m_preset->addItem(Msg::kDirPresetAd, int(DirectoryPreset::ActiveDirectory));
    m_preset->addItem(Msg::kDirPresetOpenLdap, int(DirectoryPreset::OpenLdap));
    m_preset->setCurrentIndex(m_preset->findData(int(DirectorySettings::defaultPreset())));
    auto* apply = new QPushButton(Msg::kDirPresetApply, this);
    apply->setObjectName(QStringLiteral("applyPreset"));
    connect(apply, &QPushButton::clicked, this, &DirectoryMappingPage::applyPreset);
    auto* presetRow = new QHBoxLayout;
    presetRow->addWidget(new QLabel(Msg::kDirPresetLabel, this));
    presetRow->addWidget(m_preset, 1);
    presetRow->addWidget(apply);

    auto* columns = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    left->addWidget(makeAttributes());
    left->addStretch(1);
    columns->addLayout(left, 1);
    auto* right = new QVBoxLayout;
    right->addWidget(makeDepartments());
    right->addWidget(makeLeavers());
    right->addWidget(makePasswords());
    right->addStretch(1);
    columns->addLayout(right, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(presetRow);
    layout->addLayout(columns, 1);
}

QWidget* DirectoryMappingPage::makeAttributes()
{
    auto* group = new QGroupBox(Msg::kDirAttributesGroup, this);
    auto* form = new QFormLayout(group);
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (!DirectoryMapping::isMappable(column))
            continue;
        auto* edit = new QLineEdit(group);
        edit->setObjectName(QStringLiteral("attribute%1").arg(column));
        m_attributes[static_cast<size_t>(column)] = edit;
        form->addRow(MemberColumns::header(column) + u':', edit);
    }
    m_uniqueId = new QLineEdit(group);
    m_uniqueId->setObjectName(QStringLiteral("uniqueId"));
    form->addRow(Msg::kDirUniqueIdLabel, m_uniqueId);
    return group;
}

QWidget* DirectoryMappingPage::makeDepartments()
{
    auto* group = new QGroupBox(Msg::kDirDepartmentsGroup, this);
    auto* fromOus = new QRadioButton(Msg::kDirFromOus, group);
    auto* fromAttribute = new QRadioButton(Msg::kDirFromAttribute, group);
    fromAttribute->setObjectName(QStringLiteral("fromAttribute"));
    m_departmentSource = new QButtonGroup(group);
    m_departmentSource->addButton(fromOus, int(DepartmentSource::OrganisationalUnits));
    m_departmentSource->addButton(fromAttribute, int(DepartmentSource::Attribute));
    m_departmentAttribute = new QLineEdit(group);
    m_rankAttribute = new QLineEdit(group);
    m_rankAttribute->setPlaceholderText(Msg::kDirRankPlaceholder);
    connect(fromAttribute, &QRadioButton::toggled, m_departmentAttribute, &QLineEdit::setEnabled);
    auto* grid = new QGridLayout(group);
    grid->addWidget(fromOus, 0, 0, 1, 2);
    grid->addWidget(fromAttribute, 1, 0);
    grid->addWidget(m_departmentAttribute, 1, 1);
    grid->addWidget(new QLabel(Msg::kDirRankLabel, group), 2, 0);
    grid->addWidget(m_rankAttribute, 2, 1);
    return group;
}

QWidget* DirectoryMappingPage::makeLeavers()
{
    auto* group = new QGroupBox(Msg::kDirLeaversGroup, this);
    m_leaverRule = new QButtonGroup(group);
    auto* layout = new QGridLayout(group);
    int row = 0;
    for (const auto& [rule, text] :
        {std::pair(LeaverRule::Gone, Msg::kDirLeaversGone), std::pair(LeaverRule::Disabled, Msg::kDirLeaversDisabled),
            std::pair(LeaverRule::Filter, Msg::kDirLeaversFilter)}) {
        auto* button = new QRadioButton(text, group);
        m_leaverRule->addButton(button, int(rule));
        layout->addWidget(button, row++, 0, 1, 2);
    }
    m_leaverFilter = new QLineEdit(group);
    m_leaverFilter->setObjectName(QStringLiteral("leaverFilter"));
    m_leaverFilter->setPlaceholderText(QStringLiteral("(employeeType=퇴사)"));
    connect(
        m_leaverRule->button(int(LeaverRule::Filter)), &QRadioButton::toggled, m_leaverFilter, &QLineEdit::setEnabled);
    layout->addWidget(m_leaverFilter, row++, 0, 1, 2);
    m_threshold = new QSpinBox(group);
    m_threshold->setRange(0, 100);
    m_threshold->setSuffix(QStringLiteral(" %"));
    layout->addWidget(new QLabel(Msg::kDirThresholdLabel, group), row, 0);
    layout->addWidget(m_threshold, row, 1);
    return group;
}

QWidget* DirectoryMappingPage::makePasswords()
{
    auto* group = new QGroupBox(Msg::kDirNewUsersGroup, this);
    m_passwordLength = new QSpinBox(group);
    m_passwordLength->setRange(4, 20);
    m_passwordAlphabet = new QLineEdit(group);
    auto* form = new QFormLayout(group);
    form->addRow(Msg::kDirPasswordLengthLabel, m_passwordLength);
    form->addRow(Msg::kDirPasswordAlphabetLabel, m_passwordAlphabet);
    return group;
}

void DirectoryMappingPage::applyPreset()
{
    DirectorySettings settings;
    store(settings);
    const auto preset = static_cast<DirectoryPreset>(m_preset->currentData().toInt());
    settings.applyPreset(preset);
    load(settings);
    Q_EMIT presetApplied(settings.userFilter);
}

void DirectoryMappingPage::load(const DirectorySettings& settings)
{
    const DirectoryMapping& mapping = settings.mapping;
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (QLineEdit* edit = m_attributes[static_cast<size_t>(column)])
            edit->setText(mapping.attributes[static_cast<size_t>(column)]);
    }
    m_uniqueId->setText(mapping.uniqueIdAttribute);
    m_departmentSource->button(int(mapping.departments))->setChecked(true);
    m_departmentAttribute->setText(mapping.departmentAttribute);
    m_departmentAttribute->setEnabled(mapping.departments == DepartmentSource::Attribute);
    m_rankAttribute->setText(mapping.rankAttribute);
    m_leaverRule->button(int(mapping.leavers))->setChecked(true);
    m_leaverFilter->setText(mapping.leaverFilter);
    m_leaverFilter->setEnabled(mapping.leavers == LeaverRule::Filter);
    m_threshold->setValue(settings.leaverThresholdPercent);
    m_passwordLength->setValue(settings.passwordLength);
    m_passwordAlphabet->setText(settings.passwordAlphabet);
}

void DirectoryMappingPage::store(DirectorySettings& settings) const
{
    DirectoryMapping& mapping = settings.mapping;
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (const QLineEdit* edit = m_attributes[static_cast<size_t>(column)])
            mapping.attributes[static_cast<size_t>(column)] = edit->text().trimmed();
    }
    mapping.uniqueIdAttribute = m_uniqueId->text().trimmed();
    mapping.departments = static_cast<DepartmentSource>(m_departmentSource->checkedId());
    mapping.departmentAttribute = m_departmentAttribute->text().trimmed();
    mapping.rankAttribute = m_rankAttribute->text().trimmed();
    mapping.leavers = static_cast<LeaverRule>(m_leaverRule->checkedId());
    mapping.leaverFilter = m_leaverFilter->text().trimmed();
    settings.leaverThresholdPercent = m_threshold->value();
    settings.passwordLength = m_passwordLength->value();
    settings.passwordAlphabet = m_passwordAlphabet->text();
}

} // namespace sable
