#include "administration/users/AdminPrompt.h"

#include "ui_AdminPrompt.h"

#include "foundation/base/passwords.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QEvent>
#include <QKeyEvent>

using namespace tq;


AdminPrompt::AdminPrompt(const QString& screen, QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::AdminPrompt>())
{
    ui->setupUi(this);
    setObjectName(screen);
    setAttribute(Qt::WA_DeleteOnClose);

    // The name comes only from the list.
    makeListOnly(ui->Combo1);
    onClick(ui->Command1, QStringLiteral("comprobar la cuenta de administrador"), [this] { aceptar(); });
    // Enter in the password field signs as the button does.
    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);

    guarded(QStringLiteral("leer los administradores"), [this] { fillNames(); });
}

AdminPrompt::~AdminPrompt() = default;

void AdminPrompt::fillNames()
{
    Recordset adoc;
    adoc.open(QStringLiteral("select distinct usuario from empleados where rol = ?"), {1});
    ui->Combo1->clear();
    for (int row = 0; row < adoc.recordCount(); ++row)
        ui->Combo1->addItem(adoc.valueAt(row, QStringLiteral("usuario")).toString());
    ui->Combo1->setCurrentIndex(-1);   // nobody is chosen for the user
}

bool AdminPrompt::isAdministrator(const QString& usuario, const QString& password) const
{
    // The list may be stale (a role changed, an employee deleted since it was
    // filled), so the role is read again with the password; a name that is no
    // longer there finds no row and is simply refused.
    Recordset adoc;
    adoc.open(QStringLiteral("select * from empleados where usuario = ?"), {usuario});
    for (int row = 0; row < adoc.recordCount(); ++row) {
        if (toInt16(adoc.valueAt(row, QStringLiteral("rol"))) == 1
            && verifyPassword(adoc.valueAt(row, QStringLiteral("Password")).toString(), password))
            return true;
    }
    return false;
}

void AdminPrompt::aceptar()
{
    const QString usuario = ui->Combo1->currentText();
    beforeChecks(usuario);
    if (usuario.isEmpty()) {
        prompts().message(QStringLiteral("Debe ingresar el Nombre de Usuario"));
        ui->Combo1->setFocus();
        return;
    }
    if (ui->Text1->text().isEmpty()) {
        prompts().message(QStringLiteral("Debe ingresar la Contrasena"));
        ui->Combo1->setFocus();
        return;
    }
    if (!isAdministrator(usuario, ui->Text1->text())) {
        prompts().message(refusal());
        return;
    }
    // The screen opened next is modal, and this prompt's own caller waits
    // for it to close; if it fails to open, the prompt still goes.
    handOver(this, [this] { granted(); });
}

Form11::Form11(QWidget* parent) : AdminPrompt(QStringLiteral("Form11"), parent) {}

QString Form11::refusal() const
{
    return QStringLiteral("Es necesario una cuenta de Administrador para aplicar descuento o recargo");
}

void Form11::granted() { openModal(QStringLiteral("Form10")); }

Form342::Form342(QWidget* parent) : AdminPrompt(QStringLiteral("Form342"), parent)
{
    move(twips(3500), twips(2500));
}

QString Form342::refusal() const
{
    return QStringLiteral(
        "Es necesario una cuenta de Administrador para modificar un formato guardado");
}

void Form342::beforeChecks(const QString& usuario)
{
    // Kept whatever the outcome; the change log signs with it.
    state().authorisingAdmin = usuario;
}

void Form342::granted()
{
    openModal(QStringLiteral("Form37"),
              [](QWidget* w) { w->move(twips(3500), twips(1500)); });
}

TQ_REGISTER_SCREEN(Form11)
TQ_REGISTER_SCREEN(Form342)
