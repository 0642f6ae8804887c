#include "library/wimp/filechooser.h"

#include "library/containers/sortedmap.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/wimp/modal.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeView>

namespace {

constexpr const char* Caption = "Message";

// The last directory of each list of filters.
sortedmap<TString, TString>& LastDirectories()
{
    static sortedmap<TString, TString> directories;
    return directories;
}

TString KeyOf(const vector<TFileFilter>& filters)
{
    TString key;
    for (const TFileFilter& filter : filters) {
        key += filter.Description;
        key += "\n";
        key += filter.Pattern;
        key += "\n";
    }
    return key;
}

QStringList ToNameFilters(const vector<TFileFilter>& filters)
{
    QStringList result;
    for (const TFileFilter& filter : filters) {
        // Here a name without a point is a file like any other.
        QString pattern =
            CompareText(filter.Pattern, "*.*") == 0 ? QStringLiteral("*") : ToQt(filter.Pattern);
        pattern.replace(QLatin1Char(';'), QLatin1Char(' '));
        result.append(QStringLiteral("%1 (%2)").arg(ToQt(filter.Description), pattern));
    }
    return result;
}

QString StartDirectory(const vector<TFileFilter>& filters, const char* directory)
{
    TString start = directory;
    if (start.IsEmpty()) {
        const auto it = LastDirectories().find(KeyOf(filters));
        if (it != LastDirectories().end())
            start = it->second;
    }
    if (start.IsEmpty())
        return QDir::currentPath();
    TString path;
    ToSystemPath(start, path);
    return ToQt(path.Print());
}

class TChooser : public QFileDialog
{
public:
    TChooser(const char* title, const QString& directory) : QFileDialog(ModalParent(), ToQt(title), directory)
    {
        setOption(QFileDialog::DontUseNativeDialog);
        // Whoever saves asks in its own words.
        setOption(QFileDialog::DontConfirmOverwrite);
        setOption(QFileDialog::HideNameFilterDetails);
    }

    bool Run(TString& path)
    {
        const TModalScope modal;
        ShowWholeColumns();
        ResizeDialog(*this, size().expandedTo(sizeHint()));
        if (exec() != QDialog::Accepted || selectedFiles().isEmpty())
            return false;
        path = QFile::encodeName(QDir::toNativeSeparators(selectedFiles().constFirst())).constData();
        return true;
    }

private:
    // By themselves size, kind and date are cut in the middle.
    void ShowWholeColumns()
    {
        QTreeView* list = findChild<QTreeView*>(QStringLiteral("treeView"));
        if (list == nullptr)
            return;
        const QString texts[] = {QStringLiteral("1023.99 MiB"), QStringLiteral("DirectDraw surface"),
                                 QLocale::system().toString(QDateTime(QDate(2028, 12, 28), QTime(20, 58, 58)),
                                                            QLocale::ShortFormat)};
        const int margin = 2 * fontMetrics().horizontalAdvance(QLatin1Char('x'));
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        int more = 0;
        for (int i = 0; i < 3; ++i) {
            const int before = list->columnWidth(1 + i);
            const int width = qMax(before, fontMetrics().horizontalAdvance(texts[i]) + margin);
            list->setColumnWidth(1 + i, width);
            more += width - before;
        }
        resize(width() + more, height());
    }
};

bool ChooseFile(TChooser& chooser, const vector<TFileFilter>& filters, TString& path)
{
    chooser.setObjectName(QStringLiteral("filechooser"));
    chooser.setNameFilters(ToNameFilters(filters));
    if (!chooser.Run(path))
        return false;
    const QString directory = QFileInfo(QFile::decodeName(path.Print())).absolutePath();
    LastDirectories()[KeyOf(filters)] = QFile::encodeName(directory).constData();
    return true;
}

bool RunOpenChooser(const char* title, const vector<TFileFilter>& filters, const char* directory,
                    TString& path)
{
    TChooser chooser(title, StartDirectory(filters, directory));
    chooser.setFileMode(QFileDialog::ExistingFile);
    return ChooseFile(chooser, filters, path);
}

TOpenFileChooser OpenChooser = &RunOpenChooser;

int ShowForm(QMessageBox::Icon icon, const char* name, const char* text, QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, QLatin1String(Caption), QString(), buttons, ModalParent());
    box.setObjectName(QLatin1String(name));
    box.setTextFormat(Qt::PlainText);
    box.setText(ToQt(text));
    const TModalScope modal;
    return box.exec();
}

} // namespace

bool HasLastDirectory(const vector<TFileFilter>& filters)
{
    return LastDirectories().find(KeyOf(filters)) != LastDirectories().end();
}

void ForgetLastDirectories()
{
    LastDirectories().clear();
}

bool OpenFileChooser(const char* title, const vector<TFileFilter>& filters, const char* directory,
                     TString& path)
{
    return OpenChooser(title, filters, directory, path);
}

void SetOpenFileChooser(TOpenFileChooser chooser)
{
    OpenChooser = chooser != nullptr ? chooser : &RunOpenChooser;
}

bool SaveFileChooser(const char* title, const vector<TFileFilter>& filters, const char* directory,
                     TString& path)
{
    TChooser chooser(title, StartDirectory(filters, directory));
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setFileMode(QFileDialog::AnyFile);
    if (!path.IsEmpty())
        chooser.selectFile(ToQt(path));
    return ChooseFile(chooser, filters, path);
}

bool FolderChooser(const char* title, TString& path)
{
    TChooser chooser(title, QDir::currentPath());
    chooser.setObjectName(QStringLiteral("folderchooser"));
    chooser.setFileMode(QFileDialog::Directory);
    chooser.setOption(QFileDialog::ShowDirsOnly);
    return chooser.Run(path);
}

void InstallMessageForms()
{
    SetMessageForms(
        [](const char* text) { ShowForm(QMessageBox::Warning, "message", text, QMessageBox::Ok); },
        [](const char* text) {
            return ShowForm(QMessageBox::Question, "question", text, QMessageBox::Ok | QMessageBox::Cancel) ==
                   QMessageBox::Ok;
        });
}
