#include "registers/patients/FBuscarCliente.h"

#include "ui_FBuscarCliente.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "registers/patients/patientrow.h"

#include <QKeyEvent>
#include <QShortcut>

TQ_REGISTER_SCREEN(FBuscarCliente)

using namespace tq;

namespace {

// A typed text as a LIKE pattern that matches it literally, then anything.
QString startsWith(const QString& typed)
{
    QString out;
    for (const QChar c : typed) {
        if (c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        out += c;
    }
    return out + QLatin1Char('%');
}

// Fills the grid by columns from the rows of `rs`, reading each row once.
void fill(FlexGrid* g, const Recordset& rs, const QStringList& headers, const QStringList& fields)
{
    const int n = rs.recordCount();
    QVector<QStringList> columns(fields.size());
    for (QStringList& c : columns)
        c.reserve(n);
    for (int r = 0; r < n; ++r)
        for (int c = 0; c < fields.size(); ++c)
            columns[c] << rs.valueAt(r, c).toString();
    g->clear();
    g->setCols(int(headers.size()));
    g->setRows(n + 1);
    for (int c = 0; c < headers.size(); ++c) {
        g->setTextMatrix(0, c, headers[c]);
        if (n > 0)
            g->setColumnTexts(c, std::move(columns[c]));
    }
}

}  // namespace

namespace tq {

std::optional<ChosenPatient> readPatient(std::int32_t code, bool withSex)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT * FROM Pacientes WHERE cod_paciente = ?"), {code});
    if (rs.recordCount() == 0)
        return std::nullopt;
    rs.moveFirst();
    ChosenPatient p;
    p.code = toInt32(rs.field(QStringLiteral("cod_paciente")));
    p.name = rs.text(QStringLiteral("nombre_paciente")) + QStringLiteral(", ")
             + rs.text(QStringLiteral("apellido_paciente"));
    p.address = rs.text(QStringLiteral("direccion_paciente"));
    p.birth = storedDate(rs.field(QStringLiteral("fecha_nacimiento")));
    p.insurer = toInt32(rs.field(QStringLiteral("Cod_seguro")));
    if (withSex)
        p.sex = rs.text(QStringLiteral("sexo"));
    return p;
}

std::optional<ChosenPatient> choosePatient(PatientCaller caller)
{
    // The selector is the program's while the picker is open, and back after.
    struct Selector {
        std::int16_t before = state().clientPicker;
        ~Selector() { state().clientPicker = before; }
    } selector;
    state().clientPicker = static_cast<std::int16_t>(caller);

    std::optional<ChosenPatient> chosen;
    openModal(QStringLiteral("FBuscarCliente"), [&](QWidget* w) {
        if (auto* picker = qobject_cast<FBuscarCliente*>(w))
            picker->serve(caller, [&chosen](const ChosenPatient& p) { chosen = p; });
    });
    return chosen;
}

}  // namespace tq

FBuscarCliente::FBuscarCliente(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FBuscarCliente>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FBuscarCliente"));
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);

    // A click or Enter on a row chooses it.
    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("elegir el paciente"), [this, row] { choose(row); });
    });
    connect(ui->Text1, &QLineEdit::textChanged, this,
            [this] { guarded(QStringLiteral("buscar los pacientes"), [this] { search(); }); });

    guarded(QStringLiteral("cargar la lista de pacientes"), [this] { loadAll(); });
}

FBuscarCliente::~FBuscarCliente() = default;

void FBuscarCliente::serve(PatientCaller caller, std::function<void(const ChosenPatient&)> chosen)
{
    m_caller = caller;
    m_chosen = std::move(chosen);
}

void FBuscarCliente::loadAll()
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_paciente, nombre_paciente, apellido_paciente "
                           "FROM Pacientes ORDER BY apellido_paciente"));
    fill(ui->Grid1, rs, {QStringLiteral("CÓDIGO"), QStringLiteral("NOMBRE"), QStringLiteral("APELLIDO")},
         {QStringLiteral("cod_paciente"), QStringLiteral("nombre_paciente"),
          QStringLiteral("apellido_paciente")});
    if (rs.recordCount() == 0)
        prompts().message(QStringLiteral("No existen Pacientes creados"), Icon::None);
}

void FBuscarCliente::search()
{
    const QString column = ui->Option1->isChecked() ? QStringLiteral("nombre_paciente")
                                                    : QStringLiteral("apellido_paciente");
    Recordset rs;
    rs.open(QStringLiteral("SELECT cod_paciente, nombre_paciente, apellido_paciente, "
                           "direccion_paciente FROM Pacientes WHERE %1 LIKE ? ESCAPE '\\' "
                           "LIMIT 50")
                .arg(column),
            {startsWith(ui->Text1->text())});
    fill(ui->Grid1, rs,
         {QStringLiteral("CODIGO"), QStringLiteral("NOMBRE"), QStringLiteral("APELLIDO"),
          QStringLiteral("DIRECCION")},
         {QStringLiteral("cod_paciente"), QStringLiteral("nombre_paciente"),
          QStringLiteral("apellido_paciente"), QStringLiteral("direccion_paciente")});
}

// A row without a code (the empty row of an empty list) is no choice.
void FBuscarCliente::choose(int row)
{
    if (row < 1 || row >= ui->Grid1->rows())
        return;
    const QString code = ui->Grid1->textMatrix(row, 0);
    if (code.isEmpty())
        return;
    const auto patient = readPatient(toInt32(code), m_caller == PatientCaller::ResultPrinting);
    if (!patient) {
        prompts().message(QStringLiteral("El paciente elegido ya no está registrado; "
                                         "búsquelo de nuevo, por favor."),
                          Icon::Exclamation);
        return;
    }
    if (m_chosen)
        m_chosen(*patient);
    close();
}
