#include "lab/normalvalue.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

PatientClass patientClass(const QString& sexo, const QDate& birth, bool eadulto, const QDate& today)
{
    PatientClass c;
    if (birth.isValid() && yearsBetween(birth, today) < 15)
        c.esNino = true;
    if (sexo == QLatin1String("Masculino"))
        c.sexoCodigo = 1;
    else if (sexo == QLatin1String("Femenino"))
        c.sexoCodigo = 2;
    if (eadulto)
        c.esNino = false;
    return c;
}

PatientClass patientClassOfInvoice(std::int32_t factura, const QDate& today)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT Factura.factura, Pacientes.sexo, Pacientes.fecha_nacimiento, "
                           "Pacientes.eadulto FROM Pacientes INNER JOIN Factura ON "
                           "Pacientes.cod_paciente = Factura.cod_paciente "
                           "WHERE Factura.factura = ?"),
            {factura});
    if (rs.recordCount() == 0)
        return {};
    rs.moveFirst();
    return patientClass(rs.text(QStringLiteral("sexo")),
                        storedDate(rs.field(QStringLiteral("fecha_nacimiento"))),
                        rs.field(QStringLiteral("eadulto")).toInt() != 0, today);
}

QString elegirValorNormal(const QList<NormalRow>& rows, PatientClass who)
{
    QString shown;
    qsizetype at = 0;
    if (rows.isEmpty())
        return shown;
    // Three tests in turn, each on the row current at that moment.
    if (rows.at(at).codSexo == 3) {
        if (!who.esNino && ++at >= rows.size())
            return {};
        if (!rows.at(at).valor.isEmpty())
            shown = rows.at(at).valor;
    }
    if (rows.at(at).codSexo == 1) {
        if (who.sexoCodigo != 1 && ++at >= rows.size())
            return {};
        if (!rows.at(at).valor.isEmpty())
            shown = rows.at(at).valor;
    }
    if (rows.at(at).codSexo == 4 && !rows.at(at).valor.isEmpty())
        shown = rows.at(at).valor;
    return shown;
}

QString elegirValorNormal(std::int32_t codParametro, PatientClass who)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_sexo, valor_normal FROM valparametros "
                           "WHERE cod_parametro = ? ORDER BY cod_sexo ASC"),
            {codParametro});
    QList<NormalRow> rows;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        rows.append({toInt16(rs.field(QStringLiteral("cod_sexo"))),
                     rs.text(QStringLiteral("valor_normal"))});
    return elegirValorNormal(rows, who);
}

}  // namespace tq
