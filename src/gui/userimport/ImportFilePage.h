#pragma once

#include <QByteArray>
#include <QWizardPage>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace sable {

class ImportWizard;

// The first step: the file, its encoding and delimiter (detected unless chosen) and whether its
// first line names the columns. The page is complete once the file reads without a problem; a
// problem is shown with its line.
class ImportFilePage final : public QWizardPage
{
    Q_OBJECT

public:
    explicit ImportFilePage(ImportWizard& wizard);

    void setFilePath(const QString& path);
    // 0 detected, then UTF-8, the Korean code page, UTF-16.
    void setEncodingChoice(int index);
    // 0 detected, then comma, tab.
    void setDelimiterChoice(int index);
    void setHeader(bool bHeader);
    QString statusText() const;

    bool isComplete() const override;

private:
    void browse();
    void pathEdited(const QString& text);
    void loadFile();
    void readTable();

    ImportWizard& m_wizard;
    QLineEdit* m_path;
    QComboBox* m_encoding;
    QComboBox* m_delimiter;
    QCheckBox* m_header;
    QLabel* m_status;
    QString m_loadedPath;
    QByteArray m_bytes;
    bool m_bLoaded = false;
};

} // namespace sable
