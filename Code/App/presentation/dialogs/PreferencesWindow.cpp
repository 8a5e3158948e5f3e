#include "presentation/dialogs/PreferencesWindow.h"

#include "actions/SortBasedAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/metadata/FileManager.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MessageBars.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/dialogs/FileManagersPanel.h"
#include "presentation/dialogs/HistoryPanel.h"
#include "presentation/dialogs/UpdatesPanel.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/settings/ParameterEditors.h"
#include "shell/MainController.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <array>
#include <memory>
#include <vector>

namespace tavrin {

namespace {

constexpr const char* exifIsOff = "exifSortingOff";
constexpr const char* exifIsOffTitle = "Sorting By EXIF Digital Camera Date will not work correctly.";
constexpr const char* exifIsOffText =
    "Disabling the retrieval of EXIF and shooting date information can dramatically speed up the "
    "performance of the program when adding new files, especially if those files contain visual "
    "information and are located on slow or networked drives. It will, however, also mean that the "
    "'Sort by EXIF digital camera date' feature will not work correctly.";

/// Notices and alerts that a "don't show again" has silenced: defaults to forget, and to switch back on.
constexpr std::array silencedNotices{
    "don't remind me about no files being selected", "don't remind me about inconsistent settings",
    "don't show droplet information again", "don't show droplet edit information again"};
constexpr std::array silencedAlerts{"showManualSortingSortBasedActionAlert", "showManualSortingAlert",
                                    "showTagNotPresentDialog"};

constexpr std::array schemes{
    "name(1), name(2)",   "name(0), name(1)",     "name(a), name(b)",     "name(01), name(02)",
    "name(00), name(01)", "name(001), name(002)", "name(000), name(001)", "name1, name2",
    "name0, name1",       "namea, nameb",         "name01, name02",       "name00, name01",
    "name001, name002",   "name000, name001",
};

constexpr std::array routes{QT_TRANSLATE_NOOP("PreferencesWindow", "Move after a test of the new name"),
                            QT_TRANSLATE_NOOP("PreferencesWindow", "Rename within the open folder"),
                            QT_TRANSLATE_NOOP("PreferencesWindow", "Move by path")};

/// Where words are long, a field stands below its label.
QFormLayout* makeForm() {
    auto* form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    return form;
}

/// As narrow as need be: its list shows the whole words.
QComboBox* makeBox() {
    auto* box = new WidePopUpBox;
    constexpr int leastLetters = 16;
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(leastLetters);
    box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return box;
}

class Window final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(PreferencesWindow)

  public:
    Window(QWidget* parent, const WindowServices& shared)
        : QDialog(parent), services(shared), settings(shared.controller.globalSettings()) {
        setObjectName("preferencesWindow");
        setWindowTitle(tr("Preferences"));
        setAttribute(Qt::WA_DeleteOnClose);
        resize(640, 440);
        contents->setObjectName("preferencesContents");
        contents->setAccessibleName(tr("Pages"));
        contents->setSpacing(3);
        addGeneral();
        addReading();
        addEqualNames();
        addSafety();
        addHistory();
        addDroplets();
        addDesktop();
        addUpdates();
        constexpr int margins = 24;
        contents->setFixedWidth(contents->sizeHintForColumn(0) + margins);
        connect(contents, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
        contents->setCurrentRow(0);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        auto* row = new QHBoxLayout;
        row->addWidget(contents);
        row->addWidget(pages, 1);
        auto* layout = new QVBoxLayout(this);
        layout->addLayout(row, 1);
        layout->addWidget(buttons);
    }

    void showHistory() { contents->setCurrentRow(historyRow); }

  private:
    QVBoxLayout& addPage(const QString& title) {
        contents->addItem(title);
        auto* page = new QWidget;
        auto* layout = new QVBoxLayout(page);
        layout->setSpacing(8);
        pages->addWidget(page);
        return *layout;
    }

    /// A global setting of 1 or 0.
    QCheckBox* addSetting(QVBoxLayout& page, const char* key, const QString& text) {
        auto* box = new QCheckBox(text);
        box->setObjectName(key);
        page.addWidget(box);
        bindings.push_back(std::make_unique<ParameterBinding>(
            settings, key, [box](const std::optional<PropertyValue>& value) {
                box->setChecked(value && boolValue(*value));
            }));
        connect(box, &QCheckBox::clicked, this,
                [binding = bindings.back().get()](bool isOn) { binding->write(isOn ? 1 : 0); });
        return box;
    }

    /// A user default of yes or no.
    void addDefault(QVBoxLayout& page, const char* key, const QString& text) {
        auto* box = new QCheckBox(text);
        box->setObjectName(key);
        box->setChecked(services.defaults.boolForKey(key));
        page.addWidget(box);
        connect(box, &QCheckBox::clicked, this,
                [this, key](bool isOn) { services.defaults.setObject(key, isOn); });
    }

    template <typename Labels>
    void addChoice(QFormLayout& form, const char* key, const QString& label, const Labels& labels) {
        QComboBox* box = makeBox();
        box->setObjectName(key);
        for (const auto& each : labels)
            box->addItem(tr(std::string(each).c_str()));
        form.addRow(label, box);
        bindings.push_back(std::make_unique<ParameterBinding>(
            settings, key, [box](const std::optional<PropertyValue>& value) {
                box->setCurrentIndex(value ? intValue(*value) : -1);
            }));
        connect(box, &QComboBox::activated, this,
                [binding = bindings.back().get()](int row) { binding->write(row); });
    }

    void addHelp(QVBoxLayout& page, const QString& text, const char* anchor) {
        auto* link = new QLabel(QString("<a href='help'>%1</a>").arg(text));
        link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        recolourLinks(*link);
        connect(link, &QLabel::linkActivated, this,
                [this, anchor] { services.controller.showHelpAnchor(anchor); });
        page.addWidget(link);
    }

    static void addNote(QVBoxLayout& page, const QString& text) {
        auto* note = new QLabel(text);
        note->setWordWrap(true);
        note->setForegroundRole(QPalette::PlaceholderText);
        page.addWidget(note);
    }

    void addGeneral() {
        QVBoxLayout& page = addPage(tr("General"));
        addSetting(page, "quitAfterRename", tr("&Quit after renaming"));
        addSetting(page, "continueAfterRename", tr("&Keep the list after renaming"));
        addSetting(page, "interactiveMode", tr("Show &confirmation dialog before renaming"));
        addSetting(page, "showSummary", tr("Show s&ummary after renaming is complete"));
        QCheckBox* comments = addSetting(page, "copyFileComments", tr("Keep file co&mments"));
        if (FileManager::commentsTravelWithFiles()) {
            comments->setEnabled(false);
            const QString reason = tr("File comments are parts of the files here and always go along.");
            comments->setAccessibleDescription(reason);
            addNote(page, reason);
        }
        addDefault(page, "loggerIsOn", tr("Write a debug &log"));
        page.addSpacing(8);
        auto* showAgain = new QPushButton(tr("Show All &Hidden Messages Again"));
        showAgain->setObjectName("showHiddenMessages");
        showAgain->setAutoDefault(false);
        page.addWidget(showAgain, 0, Qt::AlignLeft);
        connect(showAgain, &QPushButton::clicked, this, [this, showAgain] {
            for (const char* key : silencedNotices)
                services.defaults.removeObject(key);
            for (const char* key : silencedAlerts)
                services.defaults.removeObject(key);
            showAgain->setEnabled(false);
        });
        page.addStretch(1);
    }

    void addReading() {
        QVBoxLayout& page = addPage(tr("Reading"));
        QCheckBox* exif = addSetting(page, "retrieveEXIFInformation", tr("Read &EXIF and shooting dates"));
        auto* bars = new MessageBars;
        page.addWidget(bars);
        connect(exif, &QCheckBox::clicked, this, [this, bars](bool isOn) {
            services.controller.rereadList();
            if (isOn)
                bars->dismiss(exifIsOff);
            else
                bars->present({.objectName = exifIsOff, .bold = exifIsOffTitle, .plain = exifIsOffText});
        });
        addSetting(page, "quickLookThumbnail", tr("&Thumbnails in the list and in questions"));
        connect(addSetting(page, "accurateFolderSize", tr("Exact sizes of &folders")), &QCheckBox::clicked,
                this, [this] { services.controller.rereadList(); });
        QFormLayout* form = makeForm();
        QComboBox* store = makeBox();
        store->setObjectName("store");
        store->addItems({tr("on disk, for very long lists"), tr("in memory")});
        store->setCurrentIndex(services.defaults.integerForKey("store") == 1 ? 1 : 0);
        connect(store, &QComboBox::activated, this, [this](int row) {
            services.defaults.setObject("store", row);
            // The store goes with its list; an empty one costs nothing.
            if (services.controller.previewControl().isPreviewEmpty())
                services.controller.clearPreview();
        });
        form->addRow(tr("Keep the &list:"), store);
        page.addLayout(form);
        addNote(page, tr("A change counts from the next start, or when the list is cleared."));
        page.addStretch(1);
    }

    void addEqualNames() {
        QVBoxLayout& page = addPage(tr("Equal names"));
        addSetting(page, "previewConflictResolution",
                   tr("Show in the &preview how equal names are made distinct"));
        addSetting(page, "conflictResolutionDontChangeFirst", tr("The &first item keeps its name"));
        QFormLayout* form = makeForm();
        addChoice(*form, "conflictResolutionScheme", tr("&Mark with:"), schemes);
        std::vector<std::string> orders;
        for (const ParameterChoice& choice : sortingModeChoices())
            orders.emplace_back(choice.label);
        addChoice(*form, "conflictResolutionOrder1", tr("Count by, &1st:"), orders);
        addChoice(*form, "conflictResolutionOrder2", tr("&2nd:"), orders);
        addChoice(*form, "conflictResolutionOrder3", tr("&3rd:"), orders);
        page.addLayout(form);
        page.addStretch(1);
    }

    void addSafety() {
        QVBoxLayout& page = addPage(tr("Safety"));
        addSetting(page, "preventAccidentalITunesLibraryDamage",
                   tr("Warn before files of a &music library are renamed"));
        addSetting(page, "preventAccidentalIPhotoLibraryDamage",
                   tr("Warn before files of a &photo library are renamed"));
        QFormLayout* form = makeForm();
        addChoice(*form, "renameMode", tr("&Rename method:"), routes);
        page.addLayout(form);
        addHelp(page, tr("About the rename methods"), "helpCategory14");
        page.addStretch(1);
    }

    void addHistory() {
        historyRow = contents->count();
        QVBoxLayout& page = addPage(tr("History"));
        addSetting(page, "keepHistory", tr("Keep a &record of runs, so that they can be undone"));
        page.addWidget(new HistoryPanel(services));
        page.addStretch(1);
    }

    void addDroplets() {
        QVBoxLayout& page = addPage(tr("Droplets"));
        addSetting(page, "silentDroplet", tr("Create &silent droplets"));
        addHelp(page, tr("About silent droplets"), "helpTopic19");
        addSetting(page, "lockedDroplet", tr("&Prevent users from editing droplets"));
        page.addStretch(1);
    }

    void addDesktop() {
        QVBoxLayout& page = addPage(tr("Desktop"));
        auto* note = new QLabel(tr("In a file manager, choose “Open With” and Tavrin to add files to the "
                                   "list. An entry “Rename with Tavrin…” in its menu makes this shorter."));
        note->setWordWrap(true);
        page.addWidget(note);
        if (const FileManagerMenus* menus = FileManagerMenus::sharedInstance())
            page.addWidget(new FileManagersPanel(*menus));
        addHelp(page, tr("About file managers and the terminal"), "helpTopic57");
        page.addStretch(1);
    }

    void addUpdates() {
        QVBoxLayout& page = addPage(tr("Updates"));
        page.addWidget(new UpdatesPanel(services));
        addHelp(page, tr("About updates"), "updates");
        page.addStretch(1);
    }

    const WindowServices services;
    TVRNGlobalPreferencesPseudoAction& settings;
    QListWidget* contents = new QListWidget;
    QStackedWidget* pages = new QStackedWidget;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
    int historyRow = 0;
};

} // namespace

void PreferencesWindow::open(QWidget* parent, const WindowServices& services, Page page) {
    auto* window = parent->findChild<QDialog*>("preferencesWindow");
    if (!window)
        window = new Window(parent, services);
    if (page == Page::history)
        static_cast<Window*>(window)->showHistory();
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace tavrin
