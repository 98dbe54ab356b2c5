#include "registers/patients/Form5.h"

#include "ui_Form5.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/registry.h"

#include <QKeyEvent>
#include <QLabel>

TQ_REGISTER_SCREEN(Form5)

using namespace tq;

namespace {

// Grid1's columns, in order, with their widths in twips. The last three are
// hidden and carry what selecting a row needs.
struct GridColumn {
    const char* header;
    int width;
};
constexpr GridColumn kColumns[] = {
    {"CODIGO", 700},     {"NOMBRE", 2500},   {"APELLIDO", 2500},  {"SEXO", 1100},
    {"NACIMIENTO", 1100}, {"TEL", 1000},     {"CEL", 1000},       {"DIRECCION", 3500},
    {"CORREO", 1500},    {"FAX", 1500},      {"COD SEGURO", 0},   {"ASEGURADO", 0},
    {"ADULTO", 0}};
enum Col { Code, Name, Surname, Sex, Birth, Tel, Cel, Address, Mail, Fax, Insurer, Insured, Adult };
constexpr int kColumnCount = int(std::size(kColumns));

// The patients shown: at most 50, and only those whose insurer row exists.
const QString kListSelect = QStringLiteral(
    "SELECT Pacientes.*, seguros.Empresa AS EXPR1 FROM Pacientes, seguros "
    "WHERE Pacientes.Cod_seguro = seguros.Cod_Seguro");
const QString kListOrder = QStringLiteral(" ORDER BY nombre_paciente LIMIT 50");

const QString kNoInsurer = QStringLiteral("0 Sin Seguro");

// What the name and surname columns hold.
constexpr int kNameWidth = 60;

// A typed text as a LIKE pattern that matches it literally.
QString literalLike(const QString& typed)
{
    QString out;
    out.reserve(typed.size() + 2);
    for (const QChar c : typed) {
        if (c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        out += c;
    }
    return out;
}

QString yesNo(const QVariant& v) { return v.toBool() ? QStringLiteral("True") : QStringLiteral("False"); }

}  // namespace

Form5::Form5(QWidget* parent) : RegisterScreen(parent), ui(std::make_unique<Ui::Form5>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form5"));
    state().screenNumber = 5;
    makeListOnly(ui->Combo1);
    makeListOnly(ui->Combo2);
    ui->DT->setDate(QDate::currentDate());

    FlexGrid* g = ui->Grid1;
    g->setCols(kColumnCount);
    for (int c = 0; c < kColumnCount; ++c)
        g->setColWidth(c, kColumns[c].width);

    setUpRegister({ui->agregar, ui->modificar, ui->eliminar, ui->guardar, ui->cancelar, ui->salir},
                  {ui->Text2, ui->Text3, ui->Combo2, ui->DT, ui->Text4, ui->Text5, ui->Text6,
                   ui->Text7, ui->Text9, ui->Check1, ui->Option1, ui->Option2, ui->Combo1},
                  g, QStringLiteral("el paciente"), {ui->Command1});
    setListNoun(QStringLiteral("pacientes"));

    // A click or Enter on a row chooses it.
    connect(g, &FlexGrid::rowChosen, this, [this](int row) {
        if (!isEditing())
            guarded(QStringLiteral("mostrar los datos del paciente"), [this, row] { chooseRow(row - 1); });
    });
    connect(ui->Text1, &QLineEdit::textChanged, this,
            [this] { guarded(QStringLiteral("buscar los pacientes"), [this] { search(); }); });
    connect(ui->DT, &QDateEdit::dateChanged, this, [this] { calculoedad(); });
    connect(ui->Option1, &QRadioButton::toggled, this, [this](bool on) {
        if (isEditing())
            ui->Combo1->setEnabled(!on);
    });
    onClick(ui->Command1, QStringLiteral("abrir el historial del paciente"), [this] { estado(); });

    start();
    guarded(QStringLiteral("mostrar los datos del paciente"), [this] {
        if (ui->Grid1->rows() <= 1)
            prompts().message(QStringLiteral("no existe ningun paciente creado hasta el momento"),
                              Icon::None, messageTitle());
        else
            showFirstRow();
    });
}

Form5::~Form5() = default;

void Form5::fillGrid(const QString& condition, const QString& pattern)
{
    Recordset rs;
    if (condition.isEmpty())
        rs.open(kListSelect + kListOrder);
    else
        rs.open(kListSelect + condition + kListOrder, {pattern});

    static const char* const fields[] = {
        "cod_paciente", "nombre_paciente", "apellido_paciente", "sexo", "fecha_nacimiento",
        "tel_paciente", "cel_paciente", "direccion_paciente", "correo", "fax_cliente",
        "Cod_seguro", "asegurado", "eadulto"};
    const int n = rs.recordCount();
    QVector<QStringList> columns(kColumnCount);
    for (QStringList& c : columns)
        c.reserve(n);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < kColumnCount; ++c) {
            const QVariant v = rs.valueAt(r, QLatin1String(fields[c]));
            QString text;
            if (c == Birth)
                text = dateLong(storedDate(v));
            else if (c == Insured || c == Adult)
                text = yesNo(v);
            else
                text = v.isNull() ? QString() : v.toString();
            columns[c] << text;
        }
    }

    FlexGrid* g = ui->Grid1;
    g->clear();
    g->setRows(n + 1);
    for (int c = 0; c < kColumnCount; ++c) {
        g->setTextMatrix(0, c, QLatin1String(kColumns[c].header));
        if (n > 0)
            g->setColumnTexts(c, std::move(columns[c]));
    }
}

void Form5::loadGrid() { fillGrid(); }

// Name: the start of the name. Surname: anywhere in the surname. The two
// differ on purpose.
void Form5::search()
{
    const QString typed = literalLike(ui->Text1->text());
    if (ui->Option3->isChecked())
        fillGrid(QStringLiteral(" AND nombre_paciente LIKE ? ESCAPE '\\'"), typed + QLatin1Char('%'));
    else
        fillGrid(QStringLiteral(" AND apellido_paciente LIKE ? ESCAPE '\\'"),
                 QLatin1Char('%') + typed + QLatin1Char('%'));
}

void Form5::showFirstRow()
{
    if (ui->Grid1->rows() <= 1)
        return;
    ui->Grid1->setRow(1);
    chooseRow(0);
}

QVariant Form5::codeAt(int row) const
{
    const FlexGrid* g = ui->Grid1;
    if (row < 0 || row + 1 >= g->rows())
        return {};
    const QString code = g->textMatrix(row + 1, Code);
    if (code.isEmpty())
        return {};
    return toInt32(code);
}

int Form5::currentRow() const
{
    const int r = ui->Grid1->row();
    return r >= 1 && r < ui->Grid1->rows() ? r - 1 : -1;
}

int Form5::selectRowWithCode(const QVariant& code)
{
    if (!code.isValid() || code.isNull())
        return -1;
    const QString wanted = QString::number(toInt32(code));
    FlexGrid* g = ui->Grid1;
    for (int r = 1; r < g->rows(); ++r) {
        if (g->textMatrix(r, Code) == wanted) {
            g->setRow(r);
            return r - 1;
        }
    }
    return -1;
}

void Form5::showRow(int row)
{
    const FlexGrid* g = ui->Grid1;
    const int r = row + 1;
    ui->Text2->setText(g->textMatrix(r, Name));
    ui->Text3->setText(g->textMatrix(r, Surname));
    ui->Combo2->setCurrentIndex(-1);
    ui->Combo2->setEditText(g->textMatrix(r, Sex));
    ui->Text5->setText(g->textMatrix(r, Tel));
    ui->Text6->setText(g->textMatrix(r, Cel));
    ui->Text4->setText(g->textMatrix(r, Address));
    ui->Text9->setText(g->textMatrix(r, Mail));
    ui->Text7->setText(g->textMatrix(r, Fax));

    ui->Combo1->setCurrentIndex(-1);
    if (g->textMatrix(r, Insured) == QLatin1String("True")) {
        ui->Option2->setChecked(true);
        const std::int32_t insurer = toInt32(g->textMatrix(r, Insurer));
        const QVariant company = amb1().scalar(
            QStringLiteral("SELECT Empresa FROM seguros WHERE Cod_Seguro = ?"), {insurer});
        ui->Combo1->setEditText(QString::number(insurer) + QLatin1Char(' ') + company.toString());
    } else {
        ui->Option1->setChecked(true);
        ui->Combo1->setEditText(kNoInsurer);
    }
    ui->Check1->setChecked(g->textMatrix(r, Adult) == QLatin1String("True"));

    // The age here is the difference of calendar years: a patient born in
    // December shows a year more until his birthday. Only a change of the
    // date gives years and months.
    const QDate birth = parseDate(g->textMatrix(r, Birth));
    if (birth.isValid()) {
        ui->DT->setDate(birth);
        ui->Label12->setText(QString::number(yearsBetween(birth, QDate::currentDate()))
                             + QStringLiteral(" años"));
    } else {
        ui->Label12->clear();
    }
}

void Form5::calculoedad()
{
    ui->Label12->setText(tq::calculoedad(ui->DT->date(), QDate::currentDate()).text);
}

void Form5::fillInsurers()
{
    const QString shown = ui->Combo1->currentText();
    Recordset rs;
    rs.open(QStringLiteral("SELECT Cod_Seguro, Empresa FROM seguros ORDER BY Cod_Seguro"));
    QStringList entries;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        entries << rs.text(QStringLiteral("Cod_Seguro")) + QLatin1Char(' ')
                       + rs.text(QStringLiteral("Empresa"));
    ui->Combo1->clear();
    ui->Combo1->addItems(entries);
    const int at = entries.indexOf(shown);
    ui->Combo1->setCurrentIndex(at);
    if (at < 0)
        ui->Combo1->setEditText(shown);
    if (entries.isEmpty())
        prompts().message(QStringLiteral("No exiaten seguros creados hasta el momento"),
                          Icon::None, messageTitle());
}

void Form5::editStarted(int mode)
{
    if (mode == AddMode) {
        // A new patient starts from today, not from the birth date last shown.
        ui->DT->setDate(QDate::currentDate());
        ui->Label12->setText(QStringLiteral(" 0 años "));
        ui->Option1->setChecked(true);
        ui->Combo1->setEditText(kNoInsurer);
    }
    fillInsurers();
    ui->Combo1->setEnabled(ui->Option2->isChecked());
    if (mode == ModifyMode)
        m_insurerAtModify = insurerText();
}

QString Form5::insurerText() const
{
    return ui->Option1->isChecked() ? kNoInsurer : ui->Combo1->currentText();
}

std::optional<Refusal> Form5::validate(int mode)
{
    const auto tooLong = [](const QString& what) {
        return QStringLiteral("El %1 no puede pasar de %2 caracteres; acórtelo, por favor.")
            .arg(what)
            .arg(kNameWidth);
    };
    if (ui->Text2->text().isEmpty())
        return Refusal{QStringLiteral("Debe ingresar el nombre"), ui->Text2};
    if (ui->Text2->text().size() > kNameWidth)
        return Refusal{tooLong(QStringLiteral("nombre")), ui->Text2};
    if (ui->Text3->text().isEmpty())
        return Refusal{QStringLiteral("Debe ingresar el apellido"), ui->Text3};
    if (ui->Text3->text().size() > kNameWidth)
        return Refusal{tooLong(QStringLiteral("apellido")), ui->Text3};
    if (ui->Option2->isChecked()) {
        if (ui->Combo1->currentText().isEmpty())
            return Refusal{QStringLiteral("Debe ingresar el seguro"), ui->Combo1};
        if (Val(ui->Combo1->currentText()) == 0)
            return Refusal{QStringLiteral("el codigo del seguro no puede ser 0 Sin Seguro"),
                           ui->Combo1};
    }
    // Any receivable, paid ones too, ties the patient to his insurer. Going
    // back to "Sin seguro" is a change of insurer as well.
    if (mode == ModifyMode && insurerText() != m_insurerAtModify) {
        const QVariant rows = amb1().scalar(
            QStringLiteral("SELECT COUNT(*) FROM cxc WHERE Cod_paciente = ?"), {selectedCode()});
        if (rows.toInt() > 0)
            return Refusal{QStringLiteral("No puede cambiar el seguro del paciente ya que tiene "
                                          "cuentas por cobrar pendientes"),
                           ui->Combo1->isEnabled() ? static_cast<QWidget*>(ui->Combo1)
                                                   : ui->Option2};
    }
    return std::nullopt;
}

// The columns as the save writes them: without insurer, asegurado false and
// code 0 whatever Combo1 shows. An empty optional box stores nothing.
QList<QVariant> Form5::rowValues() const
{
    const bool insured = ui->Option2->isChecked();
    const std::int32_t insurer = insured ? toInt32(Val(ui->Combo1->currentText())) : 0;
    return {ui->Text2->text(),
            ui->Text3->text(),
            nullIfEmpty(ui->Combo2->currentText()),
            ui->DT->date(),
            nullIfEmpty(ui->Text5->text()),
            nullIfEmpty(ui->Text6->text()),
            nullIfEmpty(ui->Text4->text()),
            nullIfEmpty(ui->Text9->text()),
            nullIfEmpty(ui->Text7->text()),
            insured,
            insurer,
            ui->Check1->isChecked()};
}

QVariant Form5::saveAdd()
{
    const QVariant key = amb1().insert(
        QStringLiteral("Pacientes"),
        {QStringLiteral("nombre_paciente"), QStringLiteral("apellido_paciente"),
         QStringLiteral("sexo"), QStringLiteral("fecha_nacimiento"), QStringLiteral("tel_paciente"),
         QStringLiteral("cel_paciente"), QStringLiteral("direccion_paciente"),
         QStringLiteral("correo"), QStringLiteral("fax_cliente"), QStringLiteral("asegurado"),
         QStringLiteral("Cod_seguro"), QStringLiteral("eadulto")},
        rowValues());
    if (!key.isValid() || key.isNull())
        return {};
    return toInt32(key);
}

void Form5::saveModify()
{
    QVariantList values = rowValues();
    values << selectedCode();
    amb1().execute(
        QStringLiteral("UPDATE Pacientes SET nombre_paciente = ?, apellido_paciente = ?, sexo = ?, "
                       "fecha_nacimiento = ?, tel_paciente = ?, cel_paciente = ?, "
                       "direccion_paciente = ?, correo = ?, fax_cliente = ?, asegurado = ?, "
                       "Cod_seguro = ?, eadulto = ? WHERE cod_paciente = ?"),
        values);
}

void Form5::afterSave(int mode, const QVariant& newCode)
{
    const QVariant code = mode == AddMode ? newCode : QVariant(selectedCode());
    reloadGrid();
    const int row = selectRowWithCode(code);
    enterRest();
    if (row >= 0)
        chooseRow(row);
    else if (code.isValid() && !code.isNull())
        setSelectedCode(code);   // saved but beyond the 50 shown: the fields show it
    prompts().message(mode == AddMode ? QStringLiteral("El paciente se ingreso exitosamente")
                                      : QStringLiteral("El paciente se modifico exitosamente"),
                      Icon::None, messageTitle());
}

// Invoices keep the patient, voided ones too.
bool Form5::canDelete()
{
    const QVariant invoices = amb1().scalar(
        QStringLiteral("SELECT COUNT(*) FROM Factura WHERE cod_paciente = ?"), {selectedCode()});
    if (invoices.toInt() == 0)
        return true;
    prompts().message(
        QStringLiteral("El paciente posee transacciones con nosotros no puede ser eliminado"),
        Icon::Exclamation, messageTitle());
    return false;
}

QString Form5::deleteQuestion() const
{
    return QStringLiteral("Esta seguro de querer eliminar el paciente");
}

QString Form5::deletedMessage() const
{
    return QStringLiteral("El paciente fue eliminado existosamente");
}

void Form5::deleteSelected()
{
    amb1().execute(QStringLiteral("DELETE FROM Pacientes WHERE cod_paciente = ?"),
                   {selectedCode()});
}

void Form5::afterDelete()
{
    prompts().message(deletedMessage(), Icon::None, messageTitle());
    reloadGrid();
    clearSelection();
    clearFields();
    ui->Label12->clear();
    showFirstRow();
}

void Form5::estado()
{
    if (!hasSelection()) {
        prompts().message(QStringLiteral("Debe seleccionar un paciente de la lista"),
                          Icon::Exclamation, messageTitle());
        return;
    }
    const int code = selectedCode();
    const QString name = ui->Text2->text() + QLatin1Char(' ') + ui->Text3->text();
    const QString sex = ui->Combo2->currentText();
    const QString address = ui->Text4->text();
    const QString age = ui->Label12->text();
    openModal(QStringLiteral("FHistorial"), [=](QWidget* w) {
        w->setProperty("cod_paciente", code);
        w->setProperty("nombre", name);
        w->setProperty("sexo", sex);
        w->setProperty("direccion", address);
        w->setProperty("edad", age);
        const auto put = [w](const char* label, const QString& text) {
            if (auto* l = w->findChild<QLabel*>(QLatin1String(label)))
                l->setText(text);
        };
        put("Label9", name);
        put("Label3", sex);
        put("Label5", address);
        put("Label7", age);
    });
}
