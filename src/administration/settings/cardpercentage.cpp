#include "administration/settings/cardpercentage.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/base/values.h"

#include <QStringList>

namespace tq {

bool cambiarPorcentajeTarjeta()
{
    const QString warning = QStringList{
        QStringLiteral("Esta a punto de realizar una modificacion critica del sistema, este "
                       "cambio es irreversible"),
        QStringLiteral("  Con este cambio se modificara el porcentaje a cobrar en sus ventas "
                       "con tarjeta"),
        QStringLiteral("                  Continue solo si esta seguro de la modificacion a "
                       "realizar"),
    }.join(QLatin1Char('\n'));
    if (prompts().message(warning, Icon::Exclamation, QString::fromLatin1(kAppTitle),
                          Buttons::YesNo)
        != Answer::Yes)
        return false;

    const QString ask = QStringList{
        QStringLiteral("Ingrese el porcentaje que desea aplicar en sus ventas con tarjeta"),
        QStringLiteral("Por ejemplo:"),
        QStringLiteral("Si aplicara el 17% de descuento, ingrese el numero 17 en la casilla "
                       "inferior"),
    }.join(QLatin1Char('\n'));

    QString answer;
    do {
        const std::optional<QString> typed = prompts().input(ask);
        // Cancel is the user's way out: the percentage stays as it was, rather
        // than asking again and again until a number is typed.
        if (!typed)
            return false;
        answer = *typed;
    } while (!isNumeric(answer));

    bool changed = false;
    guarded(QStringLiteral("cambiar el porcentaje de tarjeta"), [&] {
        // The percentage is held in a 16-bit variable: 40000 is refused here,
        // before anything is written.
        const std::int16_t percent = toInt16(Val(answer));
        Transaction t;
        if (amb1().execute(QStringLiteral("UPDATE tarjeta SET tarjeta = ?"), {int(percent)}) == 0)
            amb1().execute(QStringLiteral("INSERT INTO tarjeta (tarjeta) VALUES (?)"),
                           {int(percent)});
        t.commit();
        state().cardPercentage = percent;
        changed = true;
    });
    return changed;
}

}  // namespace tq
