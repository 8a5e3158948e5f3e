#include "presentation/dialogs/OrganizePresetsDialog.h"

#include "documents/PresetsManager.h"
#include "presentation/AlertBars.h"
#include "presentation/Dialogs.h"
#include "presentation/FileBrowser.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/dialogs/PresetDialog.h"
#include "shell/MainController.h"
#include "support/text/Text.h"
#include "support/values/ValueTransformers.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tavrin {

namespace {

constexpr std::size_t presetsWorthFiltering = 10;
constexpr int indexRole = Qt::UserRole;

class OrganizeWindow final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(OrganizePresetsDialog)

  public:
    OrganizeWindow(QWidget* parent, const WindowServices& shared)
        : QDialog(parent), services(shared), manager(shared.controller.presetsManager()) {
        setObjectName("organizePresetsWindow");
        setWindowTitle(tr("Organize Presets"));
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowModality(Qt::WindowModal);
        resize(560, 380);
        filter->setObjectName("presetFilter");
        filter->setPlaceholderText(tr("Filter"));
        filter->setClearButtonEnabled(true);
        list->setObjectName("presetList");
        list->setAccessibleName(tr("Presets"));
        list->setHeaderLabels({tr("Name"), tr("Description")});
        list->setRootIsDecorated(false);
        list->setUniformRowHeights(true);
        list->header()->resizeSection(0, 200);
        auto* row = new QHBoxLayout;
        editButton = addButton(*row, "editPreset", tr("&Edit…"), [this] { edit(); });
        deleteButton = addButton(*row, "deletePreset", tr("&Delete…"), [this] { askToDelete(); });
        addButton(*row, "showPresetFolder", tr("Show &Folder"),
                  [this] { FileBrowser::open(manager.localFolder()); });
        row->addStretch(1);
        QPushButton* done = addButton(*row, "done", tr("Done"), [this] { accept(); });
        done->setDefault(true);
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(filter);
        layout->addWidget(list, 1);
        layout->addWidget(bars);
        layout->addLayout(row);
        connect(filter, &QLineEdit::textChanged, this, [this] { applyFilter(); });
        connect(list, &QTreeWidget::itemSelectionChanged, this, [this] { enableButtons(); });
        connect(list, &QTreeWidget::itemDoubleClicked, this, [this] { edit(); });
        connect(this, &QDialog::finished, this, [this] {
            manager.loadPresets();
            services.controller.updatePresetsMenu();
        });
        updateList();
    }

  private:
    template <typename Effect>
    QPushButton* addButton(QHBoxLayout& row, const char* name, const QString& text, Effect effect) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setAutoDefault(false);
        row.addWidget(button);
        connect(button, &QPushButton::clicked, this, effect);
        return button;
    }

    void updateList() {
        manager.loadPresets();
        list->clear();
        for (std::size_t i = 0; i < manager.count(); ++i) {
            const QString description = toQString(manager.descriptionAtIndex(i));
            auto* item = new QTreeWidgetItem(
                list, {toQString(manager.nameAtIndex(i)), description.section('\n', 0, 0)});
            item->setSizeHint(0, {0, list->fontMetrics().height() + 8});
            item->setData(0, indexRole, static_cast<qulonglong>(i));
            item->setToolTip(1, description.toHtmlEscaped());
        }
        filter->setVisible(manager.count() >= presetsWorthFiltering);
        list->setCurrentItem(list->topLevelItem(0));
        applyFilter();
        enableButtons();
    }

    void applyFilter() {
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            QTreeWidgetItem* item = list->topLevelItem(i);
            const bool matches = item->text(0).contains(filter->text(), Qt::CaseInsensitive) ||
                                 item->text(1).contains(filter->text(), Qt::CaseInsensitive);
            item->setHidden(!matches);
        }
    }

    void enableButtons() {
        const auto count = static_cast<std::size_t>(list->selectedItems().size());
        const bool hasSelection = ArrayIsNotEmptyTransformer::transformedValue(count);
        editButton->setEnabled(hasSelection);
        deleteButton->setEnabled(hasSelection);
    }

    [[nodiscard]] std::optional<std::size_t> selectedIndex() const {
        const auto selected = list->selectedItems();
        if (selected.isEmpty())
            return std::nullopt;
        return static_cast<std::size_t>(selected.front()->data(0, indexRole).toULongLong());
    }

    void edit() {
        if (const auto index = selectedIndex())
            PresetDialog::edit(this, services, *index, [this] { updateList(); });
    }

    void askToDelete() {
        const auto index = selectedIndex();
        if (!index)
            return;
        const std::u16string name = manager.nameAtIndex(*index);
        const Alert question{.kind = AlertKind::presetDeletion,
                             .style = AlertStyle::warning,
                             .title = fmt::format("Are you sure that you want to delete the preset \"{}\"?",
                                                  text::toUtf8(name)),
                             .text = "Deleted presets cannot be restored.",
                             .buttons = {"OK", "Cancel"}};
        Dialogs::showAlert(this, question, [this, index = *index](AlertAnswer answer) {
            if (answer.button == 0) {
                const PresetOutcome outcome = manager.deletePresetAtIndex(index);
                if (outcome.error)
                    AlertBars::showError(*bars, *outcome.error);
            }
            updateList();
        });
    }

    const WindowServices services;
    PresetsManager& manager;
    QLineEdit* filter = new QLineEdit;
    QTreeWidget* list = new QTreeWidget;
    QPushButton* editButton = nullptr;
    QPushButton* deleteButton = nullptr;
    MessageBars* bars = new MessageBars;
};

} // namespace

void OrganizePresetsDialog::open(QWidget* parent, const WindowServices& services) {
    (new OrganizeWindow(parent, services))->open();
}

} // namespace tavrin
