#include "document/JournalView.h"

#include "Messages.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>

#include <memory>

namespace sable {
namespace {

constexpr int kFilterPauseMs = 300;
constexpr int kDefaultDays = 7;

QTableWidget* makeList(const QString& name, const QStringList& headers, QWidget* parent)
{
    auto* list = new QTableWidget(0, static_cast<int>(headers.size()), parent);
    list->setObjectName(name);
    list->setHorizontalHeaderLabels(headers);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setTabKeyNavigation(false);
    list->setWordWrap(false);
    list->verticalHeader()->hide();
    list->horizontalHeader()->setStretchLastSection(true);
    return list;
}

void setRow(QTableWidget* list, int row, const QStringList& texts)
{
    for (int column = 0; column < texts.size(); ++column) {
        auto* item = new QTableWidgetItem(texts[column]);
        item->setToolTip(texts[column]);
        list->setItem(row, column, item);
    }
}

// "사용자 추가 2, 소속 추가 2, 부서 변경 1": how many rows of each kind, in the order they come.
QString summaryOf(const std::vector<JournalEntry>& entries, size_t first, size_t count)
{
    QStringList kinds;
    QList<int> counts;
    for (size_t i = first; i < first + count; ++i) {
        const QString kind = entries[i].table + u' ' + entries[i].action;
        const qsizetype at = kinds.indexOf(kind);
        if (at < 0) {
            kinds << kind;
            counts << 1;
        } else {
            ++counts[at];
        }
    }
    QStringList parts;
    for (qsizetype i = 0; i < kinds.size(); ++i)
        parts << kinds[i] + u' ' + QString::number(counts[i]);
    return parts.join(QStringLiteral(", "));
}

} // namespace

JournalView::JournalView(std::function<DbConnection()> connectDatabase, QWidget* parent)
    : QWidget(parent)
    , m_connect(std::move(connectDatabase))
{
    m_saves = makeList(QStringLiteral("JournalSaves"),
        {Msg::kJournalWhenColumn, Msg::kJournalWhoColumn, Msg::kJournalProgramColumn, Msg::kJournalSummaryColumn},
        this);
    m_rows = makeList(QStringLiteral("JournalRows"),
        {Msg::kJournalTableColumn, Msg::kJournalActionColumn, Msg::kJournalKeyColumn, Msg::kJournalNameColumn,
            Msg::kJournalLoginColumn, Msg::kJournalDepartmentColumn, Msg::kJournalFieldsColumn},
        this);
    m_state = new QLabel(this);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(QStringLiteral("JournalSplitter"));
    splitter->addWidget(m_saves);
    splitter->addWidget(m_rows);
    splitter->setChildrenCollapsible(false);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(filterBar());
    layout->addWidget(splitter, 1);
    layout->addWidget(m_state);

    m_filterPause.setSingleShot(true);
    m_filterPause.setInterval(kFilterPauseMs);
    connect(&m_filterPause, &QTimer::timeout, this, &JournalView::refresh);
    connect(m_saves, &QTableWidget::itemSelectionChanged, this, &JournalView::showRows);
}

JournalView::~JournalView()
{
    // The read ends with its statement; what it fills must outlive it.
    if (m_worker)
        m_worker->wait();
}

QWidget* JournalView::filterBar()
{
    auto* bar = new QWidget(this);
    m_period = new QCheckBox(Msg::kJournalFrom, bar);
    m_from = new QDateEdit(QDate::currentDate().addDays(-kDefaultDays), bar);
    m_to = new QDateEdit(QDate::currentDate(), bar);
    m_user = new QLineEdit(bar);
    m_department = new QLineEdit(bar);
    m_login = new QLineEdit(bar);
    m_key = new QLineEdit(bar);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_period);
    layout->addWidget(m_from);
    layout->addWidget(new QLabel(Msg::kJournalTo, bar));
    layout->addWidget(m_to);
    for (const auto& [text, edit] :
        {std::pair {Msg::kJournalUser, m_user}, std::pair {Msg::kJournalDepartment, m_department},
            std::pair {Msg::kJournalLogin, m_login}, std::pair {Msg::kJournalKey, m_key}}) {
        auto* label = new QLabel(text, bar);
        label->setBuddy(edit);
        edit->setClearButtonEnabled(true);
        layout->addSpacing(8);
        layout->addWidget(label);
        layout->addWidget(edit, 1);
        connect(edit, &QLineEdit::textChanged, &m_filterPause, qOverload<>(&QTimer::start));
    }
    for (QDateEdit* edit : {m_from, m_to}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
        edit->setEnabled(false);
        connect(m_period, &QCheckBox::toggled, edit, &QWidget::setEnabled);
        connect(edit, &QDateEdit::dateChanged, &m_filterPause, qOverload<>(&QTimer::start));
    }
    connect(m_period, &QCheckBox::toggled, &m_filterPause, qOverload<>(&QTimer::start));
    return bar;
}

JournalFilter JournalView::filter() const
{
    JournalFilter filter;
    if (m_period->isChecked()) {
        // Whole days, as the administrator picked them, in this machine's time.
        filter.since = m_from->date().startOfDay();
        filter.until = m_to->date().addDays(1).startOfDay();
    }
    filter.user = m_user->text().trimmed();
    filter.department = m_department->text().trimmed();
    filter.loginId = m_login->text().trimmed();
    filter.key = m_key->text().trimmed();
    return filter;
}

void JournalView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    refresh();
}

void JournalView::refresh()
{
    m_filterPause.stop();
    if (m_worker) {
        m_bReadAgain = true;
        return;
    }
    m_state->setText(Msg::kJournalReading);
    auto read = std::make_shared<Read>();
    const JournalFilter wanted = filter();
    m_worker = QThread::create([open = m_connect, wanted, read] {
        DbConnection db = open();
        if (!db.isEmpty())
            read->entries = ChangeJournal::read(db, wanted);
        if (!read->entries)
            read->error = DbConnection::lastError();
    });
    m_worker->setParent(this);
    connect(m_worker, &QThread::finished, this, [this, read, limit = wanted.limit] {
        m_worker->deleteLater();
        m_worker = nullptr;
        if (std::exchange(m_bReadAgain, false)) {
            refresh();
            return;
        }
        showRead(*read, limit);
        Q_EMIT refreshed();
    });
    m_worker->start();
}

void JournalView::showRead(const Read& read, int limit)
{
    const int selected = selectedSaveId();
    m_entries = read.entries.value_or(std::vector<JournalEntry> {});
    m_saveRows.clear();
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (i == 0 || m_entries[i].saveId != m_entries[i - 1].saveId)
            m_saveRows.push_back({i, 0});
        ++m_saveRows.back().count;
    }
    if (!read.entries)
        m_state->setText(Msg::kJournalFailed.arg(read.error));
    else
        m_state->setText((static_cast<int>(m_entries.size()) >= limit ? Msg::kJournalCut : Msg::kJournalCount)
                             .arg(m_saveRows.size())
                             .arg(m_entries.size()));
    showSaves(selected);
}

void JournalView::showSaves(int selectSaveId)
{
    const QSignalBlocker quiet(m_saves);
    m_saves->setRowCount(static_cast<int>(m_saveRows.size()));
    int selectRow = 0;
    for (int row = 0; row < static_cast<int>(m_saveRows.size()); ++row) {
        const Save& save = m_saveRows[static_cast<size_t>(row)];
        const JournalEntry& entry = m_entries[save.first];
        setRow(m_saves, row,
            {entry.savedAt.toLocalTime().toString(Msg::kSaveTimeFormat),
                QStringLiteral("%1@%2").arg(entry.author.user, entry.author.host), entry.author.program,
                summaryOf(m_entries, save.first, save.count)});
        if (entry.saveId == selectSaveId)
            selectRow = row;
    }
    m_saves->resizeColumnsToContents();
    if (!m_saveRows.empty())
        m_saves->selectRow(selectRow);
    showRows();
}

int JournalView::selectedSaveId() const
{
    const QList<QTableWidgetItem*> items = m_saves->selectedItems();
    if (items.isEmpty())
        return -1;
    const size_t row = static_cast<size_t>(items.first()->row());
    return row < m_saveRows.size() ? m_entries[m_saveRows[row].first].saveId : -1;
}

void JournalView::showRows()
{
    const QList<QTableWidgetItem*> items = m_saves->selectedItems();
    const auto saveRow = items.isEmpty() ? m_saveRows.size() : static_cast<size_t>(items.first()->row());
    const Save save = saveRow < m_saveRows.size() ? m_saveRows[saveRow] : Save {};
    m_rows->setRowCount(static_cast<int>(save.count));
    for (size_t i = 0; i < save.count; ++i) {
        const JournalEntry& entry = m_entries[save.first + i];
        setRow(m_rows, static_cast<int>(i),
            {entry.table, entry.action, entry.key, entry.name, entry.loginId, entry.department, entry.fields});
    }
    m_rows->resizeColumnsToContents();
}

} // namespace sable
