#include "administration/users/FcambioContrasena.h"

#include "ui_FcambioContrasena.h"

#include "foundation/base/passwords.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QList>
#include <QStringList>
#include <cstdint>

using namespace tq;

FcambioContrasena::FcambioContrasena(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FcambioContrasena>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FcambioContrasena"));
    setAttribute(Qt::WA_DeleteOnClose);

    onClick(ui->Command1, QStringLiteral("cambiar la contraseña"), [this] { cambiar(); });
    onClick(ui->Command2, QStringLiteral("cerrar la pantalla"), [this] { close(); });
}

FcambioContrasena::~FcambioContrasena() = default;

void FcambioContrasena::cambiar()
{
    const QString usuario = ui->Text1->text();
    const QString actual = ui->Text2->text();
    const QString nueva = ui->Text3->text();
    const QString confirmada = ui->Text4->text();

    Recordset& rs = amb1().rs(QStringLiteral("rsempleado"));
    if (rs.isOpen())
        rs.close();
    rs.open(QStringLiteral("select * from empleados"));

    // Every row with that name and that current password takes the new one:
    // two employees sharing a sign-on name and a password are one person to
    // whoever knows it. A wrong name or password finds no row and says nothing.
    QList<std::int32_t> codes;
    if (rs.recordCount() > 0) {
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
            if (rs.text(QStringLiteral("usuario")) != usuario
                || !verifyPassword(rs.text(QStringLiteral("Password")), actual))
                continue;
            if (nueva != confirmada) {
                prompts().message(
                    QStringLiteral("La contraseña no coincide, porfavor vuelva a escribirla"),
                    Icon::Critical);
                return;
            }
            codes << toInt32(rs.field(QStringLiteral("cod_empleado")));
        }
    }
    if (codes.isEmpty())
        return;

    // Each row gets a hash of its own (its own salt), made before the store is locked.
    QStringList hashes;
    for (qsizetype i = 0; i < codes.size(); ++i)
        hashes << hashPassword(nueva);
    Transaction tx;
    for (qsizetype i = 0; i < codes.size(); ++i)
        amb1().execute(QStringLiteral("UPDATE Empleados SET Password = ? WHERE cod_empleado = ?"),
                       {hashes.at(i), codes.at(i)});
    tx.commit();
    prompts().message(QStringLiteral("Su contraseña ha sido modificada satisfactoriamente"));
}

TQ_REGISTER_SCREEN(FcambioContrasena)
