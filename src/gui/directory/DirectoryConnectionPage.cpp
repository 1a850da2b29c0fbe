#include "directory/DirectoryConnectionPage.h"

#include "Messages.h"
#include "directory/DirectoryReader.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QThread>
#include <QVBoxLayout>

#include <memory>

namespace sable {
namespace {

QLineEdit* lineEdit(const char* name, QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    return edit;
}

} // namespace

DirectoryConnectionPage::DirectoryConnectionPage(QWidget* parent)
    : QWidget(parent)
    , m_url(lineEdit("url", this))
    , m_startTls(new QCheckBox(Msg::kDirStartTlsCheck, this))
    , m_caFile(lineEdit("caFile", this))
    , m_bindDn(lineEdit("bindDn", this))
    , m_password(lineEdit("password", this))
    , m_baseDn(lineEdit("baseDn", this))
    , m_filter(lineEdit("filter", this))
    , m_pageSize(new QSpinBox(this))
    , m_timeout(new QSpinBox(this))
    , m_testButton(new QPushButton(Msg::kDirTestButton, this))
    , m_answer(new QPlainTextEdit(this))
{
    m_url->setPlaceholderText(QStringLiteral("ldap://dc1.example.local"));
    m_startTls->setObjectName(QStringLiteral("startTls"));
    m_caFile->setPlaceholderText(Msg::kDirCaFilePlaceholder);
    m_bindDn->setPlaceholderText(Msg::kDirBindDnPlaceholder);
    m_password->setEchoMode(QLineEdit::Password);
    m_pageSize->setRange(0, 100000);
    m_timeout->setRange(1, 3600);
    m_answer->setObjectName(QStringLiteral("answer"));
    m_answer->setReadOnly(true);
    auto* browse = new QPushButton(Msg::kDirBrowse, this);
    connect(browse, &QPushButton::clicked, this, &DirectoryConnectionPage::browseCaFile);
    connect(m_testButton, &QPushButton::clicked, this, &DirectoryConnectionPage::testConnection);

    auto* caRow = new QHBoxLayout;
    caRow->addWidget(m_caFile, 1);
    caRow->addWidget(browse);
    auto* form = new QFormLayout;
    form->addRow(Msg::kDirUrlLabel, m_url);
    form->addRow(QString(), m_startTls);
    form->addRow(Msg::kDirCaFileLabel, caRow);
    form->addRow(Msg::kDirBindDnLabel, m_bindDn);
    form->addRow(Msg::kDirPasswordLabel, m_password);
    form->addRow(Msg::kDirBaseDnLabel, m_baseDn);
    form->addRow(Msg::kDirFilterLabel, m_filter);
    form->addRow(Msg::kDirPageSizeLabel, m_pageSize);
    form->addRow(Msg::kDirTimeoutLabel, m_timeout);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_testButton, 0, Qt::AlignLeft);
    layout->addWidget(m_answer, 1);
}

DirectoryConnectionPage::~DirectoryConnectionPage()
{
    if (m_probe) {
        m_probe->disconnect(this);
        m_probe->wait();
    }
}

void DirectoryConnectionPage::load(const DirectorySettings& settings)
{
    m_url->setText(settings.url);
    m_startTls->setChecked(settings.bStartTls);
    m_caFile->setText(settings.caFile);
    m_bindDn->setText(settings.bindDn);
    m_password->clear();
    m_password->setPlaceholderText(settings.password.isEmpty() ? QString() : Msg::kDirPasswordKept);
    m_baseDn->setText(settings.baseDn);
    m_filter->setText(settings.userFilter);
    m_pageSize->setValue(settings.pageSize);
    m_timeout->setValue(settings.timeoutSeconds);
}

void DirectoryConnectionPage::store(DirectorySettings& settings) const
{
    const QString bindDn = m_bindDn->text().trimmed();
    // A password belongs to its account: a changed bind DN does not keep the old one.
    if (!m_password->text().isEmpty() || bindDn != settings.bindDn || bindDn.isEmpty())
        settings.password = bindDn.isEmpty() ? QString() : m_password->text();
    settings.url = m_url->text().trimmed();
    settings.bStartTls = m_startTls->isChecked();
    settings.caFile = m_caFile->text().trimmed();
    settings.bindDn = bindDn;
    settings.baseDn = m_baseDn->text().trimmed();
    settings.userFilter = m_filter->text().trimmed();
    settings.pageSize = m_pageSize->value();
    settings.timeoutSeconds = m_timeout->value();
}

void DirectoryConnectionPage::browseCaFile()
{
    const QString file
        = QFileDialog::getOpenFileName(this, Msg::kDirCaFileLabel, m_caFile->text(), Msg::kDirCaFileFilter);
    if (!file.isEmpty())
        m_caFile->setText(file);
}

void DirectoryConnectionPage::testConnection()
{
    if (m_probe || !m_source)
        return;
    m_testButton->setEnabled(false);
    m_answer->setPlainText(Msg::kDirTesting);
    struct Outcome
    {
        std::optional<DirectoryTestReport> report;
        QString problem;
    };
    auto outcome = std::make_shared<Outcome>();
    m_probe = QThread::create(
        [settings = m_source(), outcome] { outcome->report = DirectoryReader(settings).test(&outcome->problem); });
    m_probe->setParent(this);
    connect(m_probe, &QThread::finished, this, [this, outcome] {
        const bool bPassed = outcome->report.has_value();
        QStringList lines {bPassed ? Msg::kDirTestPassed : Msg::kDirTestFailed};
        if (bPassed)
            lines << outcome->report->serverAnswer << Msg::kDirTestCount.arg(outcome->report->entries);
        else
            lines << outcome->problem;
        m_answer->setPlainText(lines.join(u'\n'));
        m_testButton->setEnabled(true);
        m_probe->deleteLater();
        m_probe = nullptr;
        Q_EMIT testFinished(bPassed, m_answer->toPlainText());
    });
    m_probe->start();
}

} // namespace sable
