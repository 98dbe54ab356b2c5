// DataReport16: the blank hematology format, with the patient's heading from
// the scratch row of Tempo and the normal values printed as fixed lines.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport16)
{
    // Landscape: the lines of normal values are long.
    Layout l = layoutOn(Paper::LetterLandscape, QStringLiteral("rstempo"),
                        QStringLiteral("HEMATOLOGIA"));
    const double w = bandWidth(l);
    const double third = w / 3;
    Level patient;
    patient.header = band(
        pair(QStringLiteral("Nombre:"), QStringLiteral("nombre"), 0, 1, 18, w - 18)
            + pair(QStringLiteral("Sexo:"), QStringLiteral("sexo"), 0, 8, 18, third - 18)
            + pair(QStringLiteral("Edad:"), QStringLiteral("edad"), third, 8, 18, third - 18)
            + QList<Item>{field(QStringLiteral("fecha"), Box{2 * third, 8, third, 5}),
                          caption(QStringLiteral("VALORES NORMALES"), Box{0, 18, w, 6},
                                  Align::Left, true, 10)},
        1);
    const QStringList normals{
        QStringLiteral("WBC     3.5 - 10.0                      LY %     17 - 48                     "
                       "MO %   4.0 - 10.0                        GR %  43.0 - 76.0"),
        QStringLiteral("RBC     3.80 - 5.80          Hgb     11.0 - 16.5                       HCT     "
                       "33.0 - 43.0              MCV    80.0 - 97.0    MCH    26.5 - 36.0    MCHC  "
                       "31.0 - 35.0   RDW    11.5 - 16.5"),
        QStringLiteral("PLT    150 - 500           PCT   0.10 - 1.00             MPV    5.0 - 11.0    "
                       "     PDW  12.0 - 18.0")};
    for (int i = 0; i < normals.size(); ++i)
        patient.header.items << caption(normals.at(i), Box{0, 25.0 + 7 * i, w, 6}, Align::Left,
                                        false, 8);
    patient.header = band(patient.header.items, 2);
    l.levels = {patient};
    return l;
}
