#include "registers/doctors/doctorlist.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QComboBox>

namespace tq {

QString doctorEntry(std::int32_t code, const QString& nombre, const QString& apellido)
{
    return QString::number(code) + QStringLiteral(" - ") + nombre + QLatin1Char(' ') + apellido;
}

int fillDoctors(QComboBox* combo, bool blankFirst)
{
    Recordset rs;
    rs.open(QStringLiteral(
        "SELECT Cod_doctor, Nombre_doctor, Apellido_doctor FROM Doctores ORDER BY Cod_doctor"));
    combo->clear();
    if (blankFirst)
        combo->addItem(QString());
    for (int r = 0; r < rs.recordCount(); ++r) {
        const std::int32_t code = toInt32(rs.valueAt(r, QStringLiteral("Cod_doctor")));
        combo->addItem(doctorEntry(code, rs.valueAt(r, QStringLiteral("Nombre_doctor")).toString(),
                                   rs.valueAt(r, QStringLiteral("Apellido_doctor")).toString()),
                       code);
    }
    combo->setCurrentIndex(-1);
    return rs.recordCount();
}

}  // namespace tq
