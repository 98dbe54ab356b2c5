#include "foundation/ui/register_screen.h"

#include "foundation/data/amb1.h"
#include "foundation/data/numbering.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/base/values.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <cmath>

namespace tq {

static const char* kNoRowChosen = "Debe seleccionar un registro de la lista";

// "de" before the record's noun, joined with its article: "del empleado",
// "de la aseguradora".
static QString ofNoun(const QString& noun)
{
    if (noun.startsWith(QLatin1String("el ")))
        return QStringLiteral("del ") + noun.mid(3);
    return QStringLiteral("de ") + noun;
}

// The sentence for rows already stored whose list could not be shown again:
// the user must not take the save for failed and make it twice.
static QString storedButNotShown(const QString& noun, const QString& list, const char* done)
{
    return QStringLiteral("Los datos %1 se %2, pero no se pudo volver a mostrar %3.")
        .arg(ofNoun(noun), QLatin1String(done), list);
}

RegisterScreen::RegisterScreen(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

void RegisterScreen::setUpRegister(const RegisterButtons& buttons, const QList<QWidget*>& fields,
                                   QWidget* grid, const QString& noun,
                                   const QList<QWidget*>& restOnly)
{
    m_buttons = buttons;
    m_fields = fields;
    m_grid = grid;
    m_noun = noun;
    m_restOnly = restOnly;

    if (m_buttons.add)
        onClick(m_buttons.add, QStringLiteral("agregar ") + noun, [this] { add(); });
    if (m_buttons.modify)
        onClick(m_buttons.modify, QStringLiteral("modificar ") + noun, [this] { modify(); });
    if (m_buttons.remove)
        onClick(m_buttons.remove, QStringLiteral("eliminar ") + noun, [this] { remove(); });
    if (m_buttons.save)
        onClick(m_buttons.save, QStringLiteral("guardar ") + noun, [this] { save(); });
    if (m_buttons.cancel)
        onClick(m_buttons.cancel, QStringLiteral("cancelar la edición ") + ofNoun(noun),
                [this] { cancel(); });
    if (m_buttons.exit)
        onClick(m_buttons.exit, QStringLiteral("cerrar la pantalla"), [this] { close(); });

    if (auto* g = dataGrid()) {
        connect(g, &DataGrid::rowChosen, this, [this](int row) {
            if (m_editing)
                return;
            guarded(QStringLiteral("mostrar los datos ") + ofNoun(m_noun),
                    [this, row] { chooseRow(row); });
        });
    }
}

void RegisterScreen::start()
{
    const bool ok = guarded(QStringLiteral("cargar ") + listPhrase(), [this] {
        loadGrid();
        const DataGrid* g = dataGrid();
        const int rows = g ? g->rows() : -1;
        if (rows == 0) {
            const QString empty = emptyListMessage();
            if (!empty.isEmpty())
                prompts().message(empty, Icon::None, messageTitle());
        } else if (auto* grid = dataGrid()) {
            grid->setCurrentRow(0);
            chooseRow(0);
        }
        enterRest();
    });
    // Whatever failed was told; the screen still comes up at rest.
    if (!ok) {
        restControls();
        clearSelection();
    }
}

QString RegisterScreen::listPhrase() const
{
    return QStringLiteral("la lista de ")
           + (m_listNoun.isEmpty() ? QStringLiteral("registros") : m_listNoun);
}

DataGrid* RegisterScreen::dataGrid() const { return qobject_cast<DataGrid*>(m_grid.data()); }

QVariant RegisterScreen::codeAt(int row) const
{
    const DataGrid* g = dataGrid();
    if (!g || codeColumn().isEmpty() || row < 0 || row >= g->rows())
        return {};
    return g->value(row, codeColumn());
}

int RegisterScreen::currentRow() const
{
    const DataGrid* g = dataGrid();
    return g ? g->currentRow() : -1;
}

int RegisterScreen::selectRowWithCode(const QVariant& code)
{
    DataGrid* g = dataGrid();
    if (!g || codeColumn().isEmpty() || !code.isValid())
        return -1;
    const int row = g->findRow(codeColumn(), code);
    g->setCurrentRow(row);
    return row;
}

void RegisterScreen::clearFields()
{
    for (QWidget* w : std::as_const(m_fields)) {
        if (auto* le = qobject_cast<QLineEdit*>(w)) {
            le->clear();
        } else if (auto* cb = qobject_cast<QComboBox*>(w)) {
            cb->setCurrentIndex(-1);
            if (cb->isEditable())
                cb->clearEditText();
        } else if (auto* te = qobject_cast<QTextEdit*>(w)) {
            te->clear();
        } else if (auto* pe = qobject_cast<QPlainTextEdit*>(w)) {
            pe->clear();
        } else if (auto* ck = qobject_cast<QCheckBox*>(w)) {
            ck->setChecked(false);
        }
    }
}

QString RegisterScreen::deleteQuestion() const
{
    return QStringLiteral("¿ Esta seguro que desea eliminar el registro ?");
}

QString RegisterScreen::modifiedMessage() const
{
    return QStringLiteral("El registro ha sido modificado satisfactoriamente");
}

QString RegisterScreen::deletedMessage() const
{
    return QStringLiteral("El registro ha sido eliminado satisfactoriamente");
}

void RegisterScreen::reloadGrid() { loadGrid(); }

void RegisterScreen::chooseRow(int row)
{
    if (row < 0)
        return;
    const QVariant code = codeAt(row);
    if (code.isValid() && !code.isNull())
        setSelectedCode(code);
    showRow(row);
}

void RegisterScreen::setSelectedCode(const QVariant& code)
{
    m_selectedCode = toInt32(code);
    m_hasSelection = true;
}

void RegisterScreen::clearSelection()
{
    m_selectedCode = 0;
    m_hasSelection = false;
}

void RegisterScreen::enterRest()
{
    restControls();
    // At rest the selected code follows the list's current row.
    const int row = currentRow();
    if (row >= 0) {
        const QVariant code = codeAt(row);
        if (code.isValid() && !code.isNull())
            setSelectedCode(code);
    }
}

void RegisterScreen::restControls()
{
    m_editing = false;
    for (QAbstractButton* b : {m_buttons.add, m_buttons.modify, m_buttons.remove})
        if (b)
            b->setEnabled(true);
    for (QAbstractButton* b : {m_buttons.save, m_buttons.cancel})
        if (b)
            b->setEnabled(false);
    for (QWidget* w : std::as_const(m_restOnly))
        w->setEnabled(true);
    for (QWidget* w : std::as_const(m_fields))
        w->setEnabled(false);
    if (m_grid)
        m_grid->setEnabled(true);
}

void RegisterScreen::enterEdit(int mode)
{
    m_mode = toInt16(mode);
    m_editing = true;
    if (m_grid)
        m_grid->setEnabled(false);
    for (QAbstractButton* b : {m_buttons.add, m_buttons.modify, m_buttons.remove})
        if (b)
            b->setEnabled(false);
    for (QWidget* w : std::as_const(m_restOnly))
        w->setEnabled(false);
    for (QAbstractButton* b : {m_buttons.save, m_buttons.cancel})
        if (b)
            b->setEnabled(true);
    for (QWidget* w : std::as_const(m_fields))
        w->setEnabled(true);
    if (mode == AddMode)
        clearFields();
    editStarted(mode);
    if (!m_fields.isEmpty())
        m_fields.first()->setFocus();
}

void RegisterScreen::refuse(const Refusal& r)
{
    prompts().message(r.message, r.icon, messageTitle());
    if (r.field) {
        r.field->setFocus();
        if (auto* le = qobject_cast<QLineEdit*>(r.field))
            le->selectAll();
    }
}

void RegisterScreen::add() { enterEdit(AddMode); }

void RegisterScreen::modify()
{
    if (!m_hasSelection) {
        prompts().message(QString::fromUtf8(kNoRowChosen), Icon::Exclamation, messageTitle());
        return;
    }
    if (!canModify())
        return;
    enterEdit(ModifyMode);
}

void RegisterScreen::save()
{
    if (!m_editing)
        return;
    const int mode = m_mode;
    if (const auto r = validate(mode)) {
        refuse(*r);
        return;
    }
    if (mode == ModifyMode && !m_hasSelection)
        throw AppError(QString::fromUtf8(kNoRowChosen));
    QVariant newCode;
    {
        Transaction t;
        if (mode == AddMode)
            newCode = saveAdd();
        else
            saveModify();
        t.commit();
    }
    // The rows are stored; what fails from here on is only the showing of them.
    // Rows stored and not shown still leave the screen at rest, so that a
    // second "Guardar" cannot store them twice.
    if (!guardedSaying(storedButNotShown(m_noun, listPhrase(), "guardaron"),
                       [this, mode, newCode] { afterSave(mode, newCode); }))
        restControls();
}

std::int32_t RegisterScreen::proposeNextCode(const QString& table, const QString& column)
{
    m_proposedCode = nextNumber(table, column);
    return m_proposedCode;
}

std::optional<Refusal> RegisterScreen::codeRefusal(QLineEdit* field, const QString& of) const
{
    const QString typed = field->text().trimmed();
    const Refusal refusal{QStringLiteral("El código %1 debe ser un número entero entre 0 y "
                                         "2147483647.")
                              .arg(of),
                          field, Icon::Exclamation};
    if (!isNumeric(typed) || Val(typed) < 0 || std::floor(Val(typed)) != Val(typed))
        return refusal;
    try {
        (void)toInt32(typed);
    } catch (const AppError&) {
        return refusal;
    }
    return std::nullopt;
}

std::int32_t RegisterScreen::takeCode(std::int32_t code, const QString& table,
                                      const QString& column, const QString& takenMessage)
{
    m_movedFrom = -1;
    if (!numberTaken(table, column, code))
        return code;
    if (code != m_proposedCode)
        throw AppError(takenMessage);
    m_movedFrom = code;
    return nextNumber(table, column);
}

void RegisterScreen::afterSave(int mode, const QVariant& newCode)
{
    if (mode == AddMode && m_movedFrom >= 0)
        prompts().message(QStringLiteral("El código %1 ya fue usado en otra estación; %2 se guardó "
                                         "con el código %3.")
                              .arg(m_movedFrom)
                              .arg(m_noun)
                              .arg(newCode.toInt()),
                          Icon::Information, messageTitle());
    m_movedFrom = -1;
    if (mode == AddMode) {
        clearFields();
        reloadGrid();
        selectRowWithCode(newCode);
        enterRest();
        const QString msg = addedMessage();
        if (!msg.isEmpty())
            prompts().message(msg, Icon::None, messageTitle());
    } else {
        reloadGrid();
        selectRowWithCode(m_selectedCode);
        const QString msg = modifiedMessage();
        if (!msg.isEmpty())
            prompts().message(msg, Icon::None, messageTitle());
        enterRest();
    }
}

void RegisterScreen::cancel()
{
    enterRest();
    const int row = currentRow();
    if (row >= 0)
        chooseRow(row);
    else
        clearFields();
}

void RegisterScreen::remove()
{
    if (m_editing)
        return;
    if (!m_hasSelection) {
        prompts().message(QString::fromUtf8(kNoRowChosen), Icon::Exclamation, messageTitle());
        return;
    }
    if (!canDelete())
        return;
    if (prompts().message(deleteQuestion(), Icon::Question, deleteQuestionTitle(),
                          Buttons::YesNo)
        != Answer::Yes)
        return;
    {
        Transaction t;
        deleteSelected();
        t.commit();
    }
    if (!guardedSaying(storedButNotShown(m_noun, listPhrase(), "eliminaron"),
                       [this] { afterDelete(); })) {
        clearSelection();
        restControls();
    }
}

void RegisterScreen::afterDelete()
{
    reloadGrid();
    clearSelection();
    clearFields();
    const QString msg = deletedMessage();
    if (!msg.isEmpty())
        prompts().message(msg, Icon::None, messageTitle());
}

}  // namespace tq
