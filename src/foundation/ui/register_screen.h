#pragma once
// The shape of the laboratory's register screens (employees, doctors,
// patients, insurers, ...): a list of the stored rows, a set of fields, and
// the six buttons Agregar, Modificar, Eliminar, Guardar, Cancelar, Salir.
//
// Two states: at rest the fields are locked and the list is live; in edit
// (adding or modifying) the fields are open and the list is locked. "Guardar"
// branches on the mode kept by the screen: 1 add, 2 modify.
//
// A screen lays out its controls in its .ui file, then hands the buttons (by
// role, since each screen names them its own way), the fields and the list to
// setUpRegister(), and finally calls start(). The per-screen texts and rules
// live in the hooks below.
#include <QList>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>
#include <cstdint>
#include <optional>

#include "foundation/ui/prompt.h"
#include "foundation/ui/widgets.h"

class QAbstractButton;
class QComboBox;
class QLineEdit;

namespace tq {

class DataGrid;

// Which button does what on a given screen.
struct RegisterButtons {
    QAbstractButton* add = nullptr;      // "Agregar"
    QAbstractButton* modify = nullptr;   // "Modificar"
    QAbstractButton* remove = nullptr;   // "Eliminar"
    QAbstractButton* save = nullptr;     // "Guardar"
    QAbstractButton* cancel = nullptr;   // "Cancelar"
    QAbstractButton* exit = nullptr;     // "Salir"
};

// A save refused by the screen's checks: the message, the field that gets
// the focus, and the icon of the box (a stop sign unless the screen says otherwise).
struct Refusal {
    QString message;
    QWidget* field = nullptr;
    Icon icon = Icon::Critical;
};

class RegisterScreen : public QWidget {
    Q_OBJECT
public:
    enum Mode : std::int16_t { NoMode = 0, AddMode = 1, ModifyMode = 2 };

    std::int16_t mode() const { return m_mode; }
    bool isEditing() const { return m_editing; }
    // Code of the row shown in the fields; meaningful when hasSelection().
    std::int32_t selectedCode() const { return m_selectedCode; }
    bool hasSelection() const { return m_hasSelection; }

protected:
    explicit RegisterScreen(QWidget* parent = nullptr);

    // `noun` names the record in error messages ("el empleado"); the list is
    // "la lista de registros" unless the screen names it with setListNoun().
    // `grid` is locked in edit; a DataGrid is also wired so that choosing a
    // row shows it. `restOnly` are further controls that follow the
    // Agregar/Modificar/Eliminar buttons (on at rest, off in edit).
    void setUpRegister(const RegisterButtons& buttons, const QList<QWidget*>& fields,
                       QWidget* grid, const QString& noun,
                       const QList<QWidget*>& restOnly = {});
    // The plural that names the rows of the list in messages ("empleados":
    // "No se pudo cargar la lista de empleados."). Call before start().
    void setListNoun(const QString& plural) { m_listNoun = plural; }
    // Loads the list, shows the first row (or tells that there is none) and
    // puts the screen at rest. Call at the end of the screen's constructor.
    void start();

    // ---- hooks the screen gives -----------------------------------------

    // Opens the screen's query and binds the list.
    virtual void loadGrid() = 0;
    // Shows a row of the list in the fields. The selected code is already set.
    virtual void showRow(int row) = 0;
    // The checks of "Guardar" for the mode, in the screen's order; the first
    // that fails is returned. Called outside the save's transaction.
    virtual std::optional<Refusal> validate(int mode) { Q_UNUSED(mode); return std::nullopt; }
    // Writes a new row (inside one transaction); returns its code, if known.
    virtual QVariant saveAdd() = 0;
    // Writes the fields over the row of the selected code (inside one transaction).
    virtual void saveModify() = 0;
    // Deletes the row of the selected code (inside one transaction).
    virtual void deleteSelected() = 0;

    // ---- hooks with the usual behaviour -----------------------------------

    // Column of the list that holds the code (for a DataGrid list).
    virtual QString codeColumn() const { return {}; }
    // Code of a row of the list; by default the codeColumn() of a DataGrid.
    virtual QVariant codeAt(int row) const;
    // The list's current row, or -1.
    virtual int currentRow() const;
    // Moves the list's cursor to the row holding `code`; returns the row or -1.
    virtual int selectRowWithCode(const QVariant& code);
    // Shown on start when the list is empty; nothing by default.
    virtual QString emptyListMessage() const { return {}; }
    // Empties the fields: texts cleared, combos without a choice, checks off.
    virtual void clearFields();
    // After the base has opened the fields for adding or modifying.
    virtual void editStarted(int mode) { Q_UNUSED(mode); }
    // May refuse to modify (with its own message); true by default.
    virtual bool canModify() { return true; }
    // Checks before the delete question (with their own messages); true by default.
    virtual bool canDelete() { return true; }
    virtual QString deleteQuestion() const;
    // Title of the delete question's box; the screen's message title by default.
    virtual QString deleteQuestionTitle() const { return messageTitle(); }
    virtual QString modifiedMessage() const;
    virtual QString addedMessage() const { return {}; }
    virtual QString deletedMessage() const;
    virtual QString messageTitle() const { return QString::fromLatin1(kAppTitle); }
    // What follows a committed save: for an add the fields are cleared, the
    // list reloaded with the new row current, rest; for a modify the list is
    // reloaded and the modified message shown, rest.
    virtual void afterSave(int mode, const QVariant& newCode);
    // What follows a committed delete: the list reloaded with no row chosen,
    // the fields cleared, the deleted message.
    virtual void afterDelete();

    // ---- services for the screens --------------------------------------

    void reloadGrid();
    // Shows a row of the list: sets the selected code from it and calls showRow.
    void chooseRow(int row);
    void setSelectedCode(const QVariant& code);   // through the checked 32-bit conversion
    void clearSelection();
    void enterRest();
    void enterEdit(int mode);
    // Shows a refusal: its message with its icon, the focus on its field.
    void refuse(const Refusal& r);

    // A code proposed for a new row, as "last plus 1": the highest `column`
    // of `table` plus 1 (1 on an empty table), remembered as the proposal.
    std::int32_t proposeNextCode(const QString& table, const QString& column);
    // A code typed in `field` that is no whole number from 0 up, or too big
    // for a code: refused with "El código <of> debe ser un número entero
    // entre 0 y 2147483647." (`of`: "del seguro").
    std::optional<Refusal> codeRefusal(QLineEdit* field, const QString& of) const;
    bool isProposedCode(std::int32_t code) const { return code == m_proposedCode; }
    // Inside the add's transaction, which holds the store for writing: the
    // code is checked again. The proposed one, taken meanwhile at another
    // station, moves to the next free one, and the screen says so after the
    // save; a code typed by hand and taken is refused with `takenMessage`
    // (AppError). Returns the code to write.
    std::int32_t takeCode(std::int32_t code, const QString& table, const QString& column,
                          const QString& takenMessage);

    QString noun() const { return m_noun; }
    // "la lista de empleados" (or "la lista de registros").
    QString listPhrase() const;
    DataGrid* dataGrid() const;
    QWidget* gridWidget() const { return m_grid; }
    const QList<QWidget*>& fields() const { return m_fields; }

private:
    void restControls();
    void add();
    void modify();
    void save();
    void cancel();
    void remove();

    RegisterButtons m_buttons;
    QList<QWidget*> m_fields;
    QList<QWidget*> m_restOnly;
    QPointer<QWidget> m_grid;
    QString m_noun;
    QString m_listNoun;
    std::int16_t m_mode = NoMode;
    std::int32_t m_selectedCode = 0;
    std::int32_t m_proposedCode = -1;   // the code proposed when the add began
    std::int32_t m_movedFrom = -1;      // the proposal another station took meanwhile
    bool m_hasSelection = false;
    bool m_editing = false;
};


}  // namespace tq
