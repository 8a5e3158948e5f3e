#include "presentation/dialogs/PresetDialog.h"

#include "documents/PresetsManager.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "shell/MainController.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>

namespace tavrin {

namespace {

/// Name and description. Save is on while the name can be used.
class PresetWindow final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(PresetDialog)

  public:
    using Save = std::function<PresetOutcome(const std::u16string& name, const std::u16string& description)>;

    PresetWindow(QWidget* parent, PresetsManager& presetsManager, const std::u16string& name,
                 const std::u16string& description, bool isNew)
        : QDialog(parent), manager(presetsManager), oldName(isNew ? QString() : toQString(name)) {
        setObjectName(isNew ? "newPresetWindow" : "editPresetWindow");
        setWindowTitle(isNew ? tr("Save as Preset") : tr("Edit Preset"));
        setAttribute(Qt::WA_DeleteOnClose);
        setWindowModality(Qt::WindowModal);
        nameField->setObjectName("presetName");
        nameField->setText(toQString(name));
        nameField->selectAll();
        note->setObjectName("presetNote");
        note->setForegroundRole(QPalette::BrightText);
        note->setTextFormat(Qt::PlainText);
        note->setWordWrap(true);
        descriptionField->setObjectName("presetDescription");
        descriptionField->setTabChangesFocus(true);
        descriptionField->setPlainText(toQString(description));
        descriptionField->setFixedHeight(fontMetrics().lineSpacing() * 3 + 16);
        buttons->button(QDialogButtonBox::Save)->setDefault(true);
        auto* form = new QFormLayout;
        form->addRow(tr("&Name:"), nameField);
        form->addRow(QString(), note);
        form->addRow(tr("&Description:"), descriptionField);
        auto* layout = new QVBoxLayout(this);
        layout->addLayout(form);
        layout->addWidget(buttons);
        setMinimumWidth(440);
        connect(nameField, &QLineEdit::textChanged, this, [this] { checkName(); });
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        checkName();
    }

    void addRemark(const QString& words) {
        auto* remark = new QLabel(words);
        remark->setObjectName("presetRemark");
        remark->setWordWrap(true);
        static_cast<QVBoxLayout*>(layout())->insertWidget(1, remark);
    }

    void setSave(Save newSave) { save = std::move(newSave); }

    /// Stays open with the reason where it can't be saved.
    void accept() override {
        const PresetOutcome outcome =
            save(fromQString(nameField->text()), fromQString(descriptionField->toPlainText()));
        if (!outcome.error) {
            QDialog::accept();
            return;
        }
        tell(toQString(*outcome.error));
        Spoken::say(note->text());
    }

  private:
    void tell(const QString& words) {
        note->setText(words);
        layout()->activate();
        resize(width(), std::max(height(), layout()->totalHeightForWidth(width())));
    }

    [[nodiscard]] bool nameIsOk() const {
        const QString name = nameField->text();
        if (name.trimmed().isEmpty())
            return false;
        return name == oldName || manager.isNameIsStillAvailable(fromQString(name));
    }

    [[nodiscard]] QString problem() const {
        const auto problem = PresetsManager::problemOfName(fromQString(nameField->text()));
        return problem ? toQString(*problem) : tr("A preset of this name exists.");
    }

    void checkName() {
        const bool isOk = nameIsOk();
        buttons->button(QDialogButtonBox::Save)->setEnabled(isOk);
        if (isOk || nameField->text().trimmed().isEmpty())
            note->clear();
        else
            tell(problem());
    }

    PresetsManager& manager;
    Save save;
    QString oldName; ///< of a preset that is being edited
    QLineEdit* nameField = new QLineEdit;
    QLabel* note = new QLabel;
    QPlainTextEdit* descriptionField = new QPlainTextEdit;
    QDialogButtonBox* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
};

void refresh(const WindowServices& services) {
    services.controller.presetsManager().loadPresets();
    services.controller.updatePresetsMenu();
}

} // namespace

void PresetDialog::saveAsPreset(QWidget* parent, const WindowServices& services) {
    PresetsManager& manager = services.controller.presetsManager();
    auto* window = new PresetWindow(parent, manager, u"Untitled", u"", true);
    if (const std::size_t pinned = services.controller.handEdits().pinned(); pinned > 0)
        window->addRemark(
            PresetWindow::tr("1 name by hand is not part of it.||%Ln names by hand are not part of it.",
                             nullptr, static_cast<int>(pinned)));
    window->setSave([&manager](const std::u16string& name, const std::u16string& description) {
        manager.createPresetsFolders(); // somebody may have removed them
        return manager.createPresetFromCurrentActionsWithName(name, description);
    });
    QObject::connect(window, &QDialog::finished, window, [services] { refresh(services); });
    window->open();
}

void PresetDialog::edit(QWidget* parent, const WindowServices& services, std::size_t index,
                        std::function<void()> then) {
    PresetsManager& manager = services.controller.presetsManager();
    const std::u16string oldName = manager.nameAtIndex(index);
    const std::string path = manager.pathAtIndex(index);
    auto* window = new PresetWindow(parent, manager, oldName, manager.descriptionAtIndex(index), false);
    window->setSave([&manager, path, oldName](const std::u16string& name, const std::u16string& description) {
        return name == oldName ? manager.changeDescription(description, path)
                               : manager.changeNameAtPath(path, name, description);
    });
    QObject::connect(window, &QDialog::finished, window, [services, then = std::move(then)] {
        refresh(services);
        then();
    });
    window->open();
}

} // namespace tavrin
