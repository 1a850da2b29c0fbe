#include "userimport/ImportPreviewPage.h"

#include "Messages.h"
#include "userimport/ImportPreviewTexts.h"
#include "userimport/ImportWizard.h"

#include <QAbstractTableModel>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace sable {

using namespace ImportPreviewTexts;

// The preview's rows as a table; it reads the preview and the file the wizard holds.
class ImportPreviewModel final : public QAbstractTableModel
{
public:
    enum Column
    {
        LineColumn,
        FateColumn,
        IdColumn,
        NameColumn,
        DepartmentColumn,
        ReasonColumn,
        ColumnCount
    };

    explicit ImportPreviewModel(ImportWizard& wizard, QObject* parent)
        : QAbstractTableModel(parent)
        , m_wizard(wizard)
    { }

    // Shows the wizard's preview; clear() lets go of it before the wizard replaces it.
    void reload() { show(m_wizard.preview()); }
    void clear() { show(nullptr); }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() || !m_preview ? 0 : static_cast<int>(m_preview->rows().size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : ColumnCount; }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        switch (section) {
        case LineColumn:
            return Msg::kImportLineColumn;
        case FateColumn:
            return Msg::kImportFateColumn;
        case IdColumn:
            return MemberColumns::header(ColMemberID);
        case NameColumn:
            return MemberColumns::header(ColMemberName);
        case DepartmentColumn:
            return Msg::kImportDepartmentField;
        case ReasonColumn:
            return Msg::kImportReasonColumn;
        default:
            return {};
        }
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!m_preview || !index.isValid())
            return {};
        const ImportRow& row = m_preview->rows()[static_cast<size_t>(index.row())];
        if (role == Qt::ForegroundRole && (index.column() == FateColumn || index.column() == ReasonColumn))
            return fateColour(row.fate);
        if (role == Qt::ToolTipRole && index.column() == ReasonColumn)
            return reasons(row).join(u'\n');
        if (role != Qt::DisplayRole)
            return {};
        switch (index.column()) {
        case LineColumn:
            return row.line;
        case FateColumn:
            return fateText(row.fate);
        case IdColumn:
            return row.member.MemberID;
        case NameColumn:
            return row.member.MemberName;
        case DepartmentColumn:
            return departmentCell(index.row());
        case ReasonColumn:
            return reasons(row).join(QStringLiteral(" / "));
        default:
            return {};
        }
    }

private:
    void show(const ImportPreview* preview)
    {
        beginResetModel();
        m_preview = preview;
        endResetModel();
    }

    // The department cell as the file gives it.
    QString departmentCell(int row) const
    {
        const int column = m_wizard.mapping().column(FieldDepartment);
        if (column < 0 || !m_wizard.table())
            return {};
        return m_wizard.table()->rows[static_cast<size_t>(row)].fields.value(column);
    }

    ImportWizard& m_wizard;
    const ImportPreview* m_preview = nullptr;
};

ImportPreviewPage::ImportPreviewPage(ImportWizard& wizard)
    : m_wizard(wizard)
    , m_summary(new QLabel(this))
    , m_creates(new QLabel(this))
    , m_refusedOnly(new QCheckBox(Msg::kImportRefusedOnly, this))
    , m_view(new QTableView(this))
    , m_model(new ImportPreviewModel(wizard, this))
    , m_filter(new QSortFilterProxyModel(this))
{
    setTitle(Msg::kImportPreviewPageTitle);
    setSubTitle(Msg::kImportPreviewPageText);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_creates->setObjectName(QStringLiteral("creates"));
    m_creates->setWordWrap(true);
    m_view->setObjectName(QStringLiteral("rows"));
    m_view->setTabKeyNavigation(false); // Tab moves on to the next control
    m_filter->setSourceModel(m_model);
    m_filter->setFilterKeyColumn(ImportPreviewModel::FateColumn);
    m_view->setModel(m_filter);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setDefaultSectionSize(20);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->setColumnWidth(ImportPreviewModel::LineColumn, 50);
    m_view->setColumnWidth(ImportPreviewModel::FateColumn, 70);
    m_view->setColumnWidth(ImportPreviewModel::DepartmentColumn, 180);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_creates);
    layout->addWidget(m_refusedOnly);
    layout->addWidget(m_view, 1);

    connect(m_refusedOnly, &QCheckBox::toggled, this,
        [this](bool bOnly) { m_filter->setFilterFixedString(bOnly ? fateText(ImportRow::Fate::Refused) : QString()); });
}

ImportPreviewPage::~ImportPreviewPage() = default;

void ImportPreviewPage::initializePage()
{
    m_model->clear();
    m_wizard.makePreview();
    m_model->reload();
    const ImportPreview* preview = m_wizard.preview();
    if (!preview)
        return;
    using Fate = ImportRow::Fate;
    m_summary->setText(Msg::kImportSummary.arg(preview->count(Fate::New))
                           .arg(preview->count(Fate::Update))
                           .arg(preview->count(Fate::Unchanged))
                           .arg(preview->count(Fate::Refused)));
    const QStringList departments = preview->newDepartmentPaths();
    const QStringList ranks = preview->newRankNames();
    QString creates = preview->hasChanges() ? Msg::kImportCreates.arg(departments.size()).arg(ranks.size())
                                            : Msg::kImportNothingToApply;
    if (!departments.isEmpty())
        creates += u'\n' + Msg::kImportDepartmentField + QStringLiteral(": ") + shortList(departments);
    if (!ranks.isEmpty())
        creates += u'\n' + Msg::kImportRankField + QStringLiteral(": ") + shortList(ranks);
    m_creates->setText(creates);
    Q_EMIT completeChanged();
}

void ImportPreviewPage::cleanupPage()
{
    m_model->clear();
}

bool ImportPreviewPage::isComplete() const
{
    return m_wizard.preview() && m_wizard.preview()->hasChanges();
}

QString ImportPreviewPage::summaryText() const
{
    return m_summary->text();
}

} // namespace sable
