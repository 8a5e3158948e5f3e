#include "presentation/dialogs/LocateDialogs.h"

#include "presentation/QtText.h"
#include "presentation/dialogs/AnswerOnce.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QStyle>
#include <algorithm>

namespace tavrin {

namespace {

std::vector<std::string> pathsOf(const QStringList& names) {
    std::vector<std::string> paths;
    for (const QString& name : names)
        paths.push_back(QFile::encodeName(name).toStdString());
    return paths;
}

/// Takes bundle folders as if they were files. The dialogs of the desktop can't choose both at once.
class DropletsDialog final : public QFileDialog {
    Q_DECLARE_TR_FUNCTIONS(LocateDialogs)

  public:
    DropletsDialog(QWidget* parent, const LocatePanel& panel) : QFileDialog(parent, toQString(panel.title)) {
        setOption(DontUseNativeDialog);
        setFileMode(ExistingFiles);
        setNameFilters({tr("Droplets (*.desktop *.app)"), tr("All files (*)")});
        setDirectory(QDir::homePath());
        // With a folder as the current entry the button says that it opens that.
        connect(
            this, &QFileDialog::currentChanged, this,
            [this, prompt = toQString(panel.prompt)](const QString& path) {
                if (path.endsWith(".app"))
                    setLabelText(Accept, prompt);
            },
            Qt::QueuedConnection);
    }

    void accept() override {
        const QStringList chosen = selectedFiles();
        const bool areAllThere = std::ranges::all_of(chosen, [](const QString& path) {
            const QFileInfo info(path);
            return info.isFile() || (info.isDir() && path.endsWith(".app"));
        });
        // With no bundle among them it is a dialog for files as any other, which opens folders.
        const bool hasBundle =
            std::ranges::any_of(chosen, [](const QString& path) { return QFileInfo(path).isDir(); });
        if (areAllThere && hasBundle)
            done(Accepted);
        else
            QFileDialog::accept();
    }
};

void prepare(QFileDialog& dialog, const LocatePanel& panel) {
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    dialog.setLabelText(QFileDialog::Accept, toQString(panel.prompt));
    // A dialog of the desktop has no place for the message, and no layout of ours.
    auto* message = new QLabel(toQString(panel.message), &dialog);
    message->setObjectName("locateMessage");
    message->setWordWrap(true);
    const int margin = dialog.style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    message->setContentsMargins(margin, margin, margin, 0);
    if (QLayout* layout = dialog.layout())
        layout->setMenuBar(message);
}

} // namespace

void LocateDialogs::askForDroplets(QWidget* parent, const LocatePanel& panel,
                                   std::function<void(std::optional<std::vector<std::string>>)> answer) {
    auto* dialog = new DropletsDialog(parent, panel);
    dialog->setObjectName("locateDropletsDialog");
    prepare(*dialog, panel);
    const AnswerOnce<std::optional<std::vector<std::string>>> once(std::move(answer));
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, once](int result) {
        if (result == QDialog::Accepted)
            once(pathsOf(dialog->selectedFiles()));
        else
            once(std::nullopt);
    });
    dialog->open();
}

void LocateDialogs::askForFolder(QWidget* parent, const LocatePanel& panel,
                                 std::function<void(std::optional<std::string>)> answer) {
    auto* dialog = new QFileDialog(parent, toQString(panel.title), QDir::homePath());
    dialog->setObjectName("locateFolderDialog");
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::DontUseNativeDialog); // which would not show the message
    prepare(*dialog, panel);
    const AnswerOnce<std::optional<std::string>> once(std::move(answer));
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, once](int result) {
        const std::vector<std::string> chosen = pathsOf(dialog->selectedFiles());
        if (result == QDialog::Accepted && !chosen.empty())
            once(chosen.front());
        else
            once(std::nullopt);
    });
    dialog->open();
}

} // namespace tavrin
