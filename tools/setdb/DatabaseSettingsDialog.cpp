#include "DatabaseSettingsDialog.h"

#include "Messages.h"
#include "db/ChartCopy.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "platform/PrivateFiles.h"
#include "server/ServerDatabase.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace sable {
namespace {

using Kind = DatabaseChoice::Kind;

QLineEdit* passwordEdit(QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setEchoMode(QLineEdit::Password);
    return edit;
}

// Opens the chosen database; a new embedded database file is created when `create` is set. A
// relative file lies in the server's folder `home`, as the server and the console take it.
bool openChoice(DbConnection& connection, const DatabaseChoice& choice, bool create, const QString& home)
{
    QString text = choice.connectionString();
    if (create && choice.kind == Kind::EmbeddedFile && choice.typeName() == QLatin1String("SQLITE")) {
        const QString file = QFileInfo(QDir(home), choice.filePath).absoluteFilePath();
        PrivateFiles::makePath(QFileInfo(file).absolutePath());
        PrivateFiles::createEmpty(file);
        text += QStringLiteral(";FailIfMissing=False");
    }
    return connection.open(text, home);
}

} // namespace

DatabaseSettingsDialog::DatabaseSettingsDialog(StartupConfig config, QWidget* parent)
    : QDialog(parent)
    , m_config(std::move(config))
    , m_ask([this](const QString& text, QMessageBox::StandardButtons buttons) {
        return QMessageBox::question(this, Msg::kSetDbTitle, text, buttons);
    })
    , m_tell([this](const QString& text) { QMessageBox::warning(this, Msg::kSetDbTitle, text); })
{
    setWindowTitle(Msg::kSetDbTitle);
    auto* kindRow = new QHBoxLayout;
    m_kind = new QButtonGroup(this);
    m_pages = new QStackedWidget(this);
    const std::pair<Kind, QString> kinds[] = {{Kind::EmbeddedFile, Msg::kSetDbEmbedded},
        {Kind::SqlServer, Msg::kSetDbSqlServer}, {Kind::PostgreSql, Msg::kSetDbPostgreSql}};
    for (const auto& [kind, label] : kinds) {
        auto* button = new QRadioButton(label, this);
        m_kind->addButton(button, static_cast<int>(kind));
        kindRow->addWidget(button);
    }
    m_pages->addWidget(createFilePage());
    m_pages->addWidget(createSqlServerPage());
    m_pages->addWidget(createPostgreSqlPage());
    connect(m_kind, &QButtonGroup::idClicked, m_pages, &QStackedWidget::setCurrentIndex);

    m_result = new QLabel(this);
    m_result->setWordWrap(true);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(Msg::kSetDbOk);
    buttons->button(QDialogButtonBox::Cancel)->setText(Msg::kSetDbCancel);
    auto* test = buttons->addButton(Msg::kSetDbTest, QDialogButtonBox::ActionRole);
    connect(test, &QPushButton::clicked, this, &DatabaseSettingsDialog::testConnection);
    connect(buttons, &QDialogButtonBox::accepted, this, &DatabaseSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &DatabaseSettingsDialog::reject);

    auto* layout = new QVBoxLayout(this);
    auto* kindLabel = new QLabel(Msg::kSetDbKind, this);
    layout->addWidget(kindLabel);
    layout->addLayout(kindRow);
    layout->addWidget(m_pages);
    layout->addWidget(m_result);
    layout->addWidget(buttons);
    setChoice(DatabaseChoice::current(m_config));
}

QWidget* DatabaseSettingsDialog::createFilePage()
{
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    auto* row = new QHBoxLayout;
    m_file = new QLineEdit(page);
    auto* browseButton = new QPushButton(Msg::kSetDbBrowse, page);
    connect(browseButton, &QPushButton::clicked, this, &DatabaseSettingsDialog::browse);
    row->addWidget(m_file);
    row->addWidget(browseButton);
    form->addRow(Msg::kSetDbFile, row);
    return page;
}

QWidget* DatabaseSettingsDialog::createSqlServerPage()
{
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    m_sqlServer = new QLineEdit(page);
    m_sqlDatabase = new QLineEdit(page);
    m_sqlLogin = new QLineEdit(page);
    m_sqlPassword = passwordEdit(page);
    form->addRow(Msg::kSetDbServerAddress, m_sqlServer);
    form->addRow(Msg::kSetDbDatabase, m_sqlDatabase);
    form->addRow(Msg::kSetDbLogin, m_sqlLogin);
    form->addRow(Msg::kSetDbPassword, m_sqlPassword);
    return page;
}

QWidget* DatabaseSettingsDialog::createPostgreSqlPage()
{
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    m_pgHost = new QLineEdit(page);
    m_pgPort = new QSpinBox(page);
    m_pgPort->setRange(1, 65535);
    m_pgDatabase = new QLineEdit(page);
    m_pgUser = new QLineEdit(page);
    m_pgPassword = passwordEdit(page);
    form->addRow(Msg::kSetDbHost, m_pgHost);
    form->addRow(Msg::kSetDbPort, m_pgPort);
    form->addRow(Msg::kSetDbDatabase, m_pgDatabase);
    form->addRow(Msg::kSetDbUser, m_pgUser);
    form->addRow(Msg::kSetDbPassword, m_pgPassword);
    return page;
}

DatabaseChoice DatabaseSettingsDialog::choice() const
{
    DatabaseChoice choice;
    choice.kind = static_cast<Kind>(m_kind->checkedId());
    switch (choice.kind) {
    case Kind::EmbeddedFile:
        choice.filePath = m_file->text().trimmed();
        break;
    case Kind::SqlServer:
        choice.server = m_sqlServer->text().trimmed();
        choice.databaseName = m_sqlDatabase->text().trimmed();
        choice.user = m_sqlLogin->text().trimmed();
        choice.password = m_sqlPassword->text();
        break;
    case Kind::PostgreSql:
        choice.server = m_pgHost->text().trimmed();
        choice.port = m_pgPort->value();
        choice.databaseName = m_pgDatabase->text().trimmed();
        choice.user = m_pgUser->text().trimmed();
        choice.password = m_pgPassword->text();
        break;
    }
    return choice;
}

void DatabaseSettingsDialog::setChoice(const DatabaseChoice& choice)
{
    m_kind->button(static_cast<int>(choice.kind))->setChecked(true);
    m_pages->setCurrentIndex(static_cast<int>(choice.kind));
    m_file->setText(choice.kind == Kind::EmbeddedFile ? choice.filePath : m_config.paths().defaultDatabasePath);
    const bool sql = choice.kind == Kind::SqlServer;
    const bool pg = choice.kind == Kind::PostgreSql;
    m_sqlServer->setText(sql ? choice.server : QString());
    m_sqlDatabase->setText(sql ? choice.databaseName : QString());
    m_sqlLogin->setText(sql ? choice.user : QString());
    m_sqlPassword->setText(sql ? choice.password : QString());
    m_pgHost->setText(pg ? choice.server : QStringLiteral("127.0.0.1"));
    m_pgPort->setValue(pg ? choice.port : DatabaseChoice::kDefaultPostgreSqlPort);
    m_pgDatabase->setText(pg ? choice.databaseName : QString());
    m_pgUser->setText(pg ? choice.user : QString());
    m_pgPassword->setText(pg ? choice.password : QString());
}

QString DatabaseSettingsDialog::testResult() const
{
    return m_result->text();
}

void DatabaseSettingsDialog::browse()
{
    const QString path = QFileDialog::getSaveFileName(
        this, Msg::kSetDbEmbedded, m_file->text(), QString(), nullptr, QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty())
        m_file->setText(QDir::toNativeSeparators(path));
}

void DatabaseSettingsDialog::testConnection()
{
    const DatabaseChoice chosen = choice();
    if (const QString problem = chosen.problem(); !problem.isEmpty()) {
        m_result->setText(problem);
        return;
    }
    if (chosen.kind == Kind::EmbeddedFile
        && !QFileInfo(QDir(m_config.paths().programFolder), chosen.filePath).exists()) {
        m_result->setText(Msg::kSetDbFileWillBeCreated);
        return;
    }
    DbConnection connection;
    m_result->setText(openChoice(connection, chosen, false, m_config.paths().programFolder)
            ? Msg::kSetDbTestSucceeded
            : DbConnection::lastError());
}

void DatabaseSettingsDialog::accept()
{
    const DatabaseChoice chosen = choice();
    if (const QString problem = chosen.problem(); !problem.isEmpty()) {
        m_tell(problem);
        return;
    }
    DbConnection target;
    if (!openChoice(target, chosen, true, m_config.paths().programFolder)) {
        m_tell(Msg::kSetDbConnectFailed.arg(DbConnection::lastError()));
        return;
    }
    if (!prepareDatabase(target))
        return;
    target.close();
    if (!chosen.write(m_config)) {
        m_tell(Msg::kSetDbWriteFailed);
        return;
    }
    QDialog::accept();
}

bool DatabaseSettingsDialog::prepareDatabase(DbConnection& target)
{
    if (!DbSchema::existingTables(target).isEmpty())
        return true;
    const auto create = m_ask(Msg::kSetDbCreateTables, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (create == QMessageBox::Cancel)
        return false;
    if (create == QMessageBox::No)
        return true;
    bool ok = false;
    DbSchema::createMissingTables(target, &ok);
    if (!ok) {
        m_tell(Msg::kSetDbCreateFailed.arg(DbConnection::lastError()));
        return false;
    }
    if (m_ask(Msg::kSetDbCopyChart, QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return true;
    return copyCurrentChart(target);
}

bool DatabaseSettingsDialog::copyCurrentChart(DbConnection& target)
{
    DbConnection source = ServerDatabase::connect(m_config, nullptr);
    if (source.isEmpty()) {
        m_tell(Msg::kSetDbSourceFailed.arg(DbConnection::lastError()));
        return false;
    }
    const ChartCopy::Result copied = ChartCopy::copy(source, target);
    if (!copied.bOk) {
        m_tell(Msg::kSetDbCopyFailed.arg(copied.error));
        return false;
    }
    return true;
}

} // namespace sable
