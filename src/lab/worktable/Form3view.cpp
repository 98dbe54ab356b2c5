#include "lab/worktable/Form3view.h"

#include "ui_Form3view.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "lab/sheets.h"
#include "lab/sheets/opensheet.h"
#include "lab/worktable.h"

#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QSet>
#include <QTreeWidgetItem>

TQ_REGISTER_SCREEN(Form3view)

using namespace tq;

namespace {

const QString kPrompt = QStringLiteral(">>> Seleccione la Plantilla a Utilizar <<<");
const QString kAfterCancel = QStringLiteral("Seleccione el Formato de Resultado");

// Columns of the pick grid; column 0 is the narrow fixed one.
enum PickCol { Examen = 1, Paciente = 2, Edad = 3, Correlativo = 4, Factura = 5, PickCols = 6 };

// The joins every query of the work table shares: a waiting exam with its
// exam, type, invoice and patient, voided invoices left out.
const QString kJoins = QStringLiteral(
    " FROM TipoExamen, Examenes, EvaluadoTemporal, Factura, Pacientes"
    " WHERE TipoExamen.cod_tipo_examen = Examenes.cod_tipo_examen"
    " AND Examenes.cod_descripcionexamen = EvaluadoTemporal.cod_descripcionexamen"
    " AND EvaluadoTemporal.factura = Factura.factura"
    " AND Factura.cod_paciente = Pacientes.cod_paciente"
    " AND Factura.anulada = FALSE");
// Only exams whose result is filled here appear in the tree.
const QString kFilled = QStringLiteral(" AND Examenes.llenaresultado = TRUE");

// A node's text read as a number by its leading digits ("125  Ana Ruiz" is
// 125); 0 when it starts with anything else.
std::int32_t leadingNumber(const QString& text)
{
    int n = 0;
    while (n < text.size() && text.at(n) >= QLatin1Char('0') && text.at(n) <= QLatin1Char('9'))
        ++n;
    return n == 0 ? 0 : toInt32(text.left(n));
}

QString fullName(const QVariant& nombre, const QVariant& apellido)
{
    return nombre.toString() + QLatin1Char(' ') + apellido.toString();
}

// A small picture of a printed sheet of each template, so that the
// technician sees what the choice gives.
QPixmap samplePicture(int code)
{
    static const char* const titles[] = {"", "RESULTADOS DE LABORATORIO", "HEMATOLOGIA",
                                         "UROANALISIS", "QUIMICA - CLINICA", "PARASITOLOGICO",
                                         "RESULTADOS DE LABORATORIO"};
    QPixmap page(240, 170);
    page.fill(Qt::white);
    QPainter p(&page);
    p.setPen(QColor(90, 90, 90));
    p.drawRect(0, 0, 239, 169);
    p.fillRect(8, 8, 30, 22, QColor(70, 120, 180));   // the logo's place
    QFont f = p.font();
    f.setPixelSize(9);
    f.setBold(true);
    p.setFont(f);
    p.drawText(QRect(44, 8, 188, 12), Qt::AlignCenter, QStringLiteral("LABORATORIO CLINICO"));
    p.drawText(QRect(8, 36, 224, 12), Qt::AlignCenter, QLatin1String(titles[code]));
    p.drawLine(8, 50, 232, 50);
    p.setPen(QColor(160, 160, 160));
    const QRect body(8, 56, 224, 104);
    switch (code) {
    case 2:    // two halves of name, result, normal
    case 4: {
        const int rows = code == 2 ? 11 : 14;
        const int h = body.height() / rows;
        for (int r = 0; r <= rows; ++r)
            p.drawLine(body.left(), body.top() + r * h, body.right(), body.top() + r * h);
        for (int x : {0, 48, 80, 112, 160, 192, 224})
            p.drawLine(body.left() + x, body.top(), body.left() + x, body.top() + rows * h);
        break;
    }
    case 3: {   // physical and chemical blocks, microscope beside
        const int h = body.height() / 17;
        for (int r = 0; r <= 17; ++r)
            p.drawLine(body.left(), body.top() + r * h, body.right(), body.top() + r * h);
        p.fillRect(body.left(), body.top() + 7 * h, body.width(), h, QColor(200, 210, 230));
        for (int x : {0, 64, 112, 176, 224})
            p.drawLine(body.left() + x, body.top(), body.left() + x, body.top() + 17 * h);
        break;
    }
    case 5:    // ten captioned fields
        for (int r = 0; r < 10; ++r) {
            const int y = body.top() + 4 + r * 10;
            p.fillRect(body.left(), y, 50, 5, QColor(120, 120, 120));
            p.drawLine(body.left() + 56, y + 5, body.right(), y + 5);
        }
        break;
    default:   // a free page of text
        for (int r = 0; r < 12; ++r) {
            const int y = body.top() + 4 + r * 8;
            p.drawLine(body.left(), y, body.left() + (r % 3 == 2 ? 140 : 224), y);
        }
        break;
    }
    return page;
}

}  // namespace

Form3view::Form3view(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Form3view>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form3view"));
    setAttribute(Qt::WA_DeleteOnClose);
    state().enMesa = true;
    state().idFormatoActual = 0;

    resetGrid();
    ui->Grid1->setColWidth(0, 200);
    ui->Grid1->setColWidth(Examen, 2600);
    ui->Grid1->setColWidth(Paciente, 2800);
    ui->Grid1->setColWidth(Edad, 1300);
    ui->Grid1->setColWidth(Correlativo, 900);
    ui->Grid1->setColWidth(Factura, 900);
    makeListOnly(ui->Combo1);
    ui->Label13->hide();
    ui->Combo1->hide();
    ui->Command6->hide();
    ui->TreeView1->installEventFilter(this);

    onClick(ui->Command3, QStringLiteral("actualizar los exámenes pendientes"),
            [this] { actualizarPendientes(); });
    onClick(ui->Command1, QStringLiteral("contraer el árbol"),
            [this] { ui->TreeView1->collapseAll(); });
    onClick(ui->Command2, QStringLiteral("expandir el árbol"),
            [this] { ui->TreeView1->expandAll(); });
    onClick(ui->Command4, QStringLiteral("agregar el examen"), [this] { agregarExamen(); });
    onClick(ui->Command6, QStringLiteral("llenar el resultado"), [this] { llenarResultado(); });
    onClick(ui->Command5, QStringLiteral("cancelar la selección de exámenes"),
            [this] { cancelar(); });
    connect(ui->TreeView1, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
        guarded(QStringLiteral("mostrar el examen"), [this, item] { clickNode(item); });
    });
    connect(ui->Combo1, &QComboBox::activated, this, [this](int index) {
        guarded(QStringLiteral("mostrar la plantilla"), [this, index] { elegirPlantilla(index); });
    });

    guarded(QStringLiteral("cargar las plantillas de resultados"), [this] { loadTemplates(); });
    guarded(QStringLiteral("cargar los exámenes pendientes"), [this] { actualizarPendientes(); });
}

Form3view::~Form3view() { state().enMesa = false; }

// Enter or the space bar on a node works as a click, for those who move
// through the tree with the keyboard.
bool Form3view::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->TreeView1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            if (QTreeWidgetItem* item = ui->TreeView1->currentItem())
                guarded(QStringLiteral("mostrar el examen"), [this, item] { clickNode(item); });
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void Form3view::loadTemplates()
{
    ui->Combo1->clear();
    ui->Combo1->addItem(kPrompt);
    Recordset rs;
    rs.open(QStringLiteral("SELECT Cod_Plantilla, Plantilla FROM Plantilla ORDER BY Cod_Plantilla"));
    for (int r = 0; r < rs.recordCount(); ++r) {
        const std::int32_t code = toInt32(rs.valueAt(r, 0));
        // The second blank page only reopens stored sheets; it is never filled here.
        if (code == kBlankTemplate2)
            continue;
        ui->Combo1->addItem(QString::number(code) + QStringLiteral("  ")
                            + rs.valueAt(r, 1).toString());
    }
    ui->Combo1->setCurrentIndex(0);
}

// ---------------------------------------------------------------- the tree

QString Form3view::sql(Query query)
{
    switch (query) {
    case Query::Types:
        return QStringLiteral("SELECT cod_tipo_examen, tipo_examen FROM TipoExamen "
                              "ORDER BY cod_tipo_examen");
    case Query::ExamNodes:
        return QStringLiteral("SELECT DISTINCT EvaluadoTemporal.cod_descripcionexamen, "
                              "TipoExamen.tipo_examen, Examenes.examen")
               + kJoins + kFilled
               + QStringLiteral(" ORDER BY EvaluadoTemporal.cod_descripcionexamen");
    case Query::ExamLeaves:
        return QStringLiteral("SELECT EvaluadoTemporal.correlativo, Examenes.examen, "
                              "Pacientes.nombre_paciente, Pacientes.apellido_paciente")
               + kJoins + kFilled
               + QStringLiteral(" ORDER BY EvaluadoTemporal.cod_descripcionexamen, "
                                "EvaluadoTemporal.correlativo");
    case Query::PatientNodes:
        return QStringLiteral("SELECT DISTINCT Factura.cod_paciente, Pacientes.nombre_paciente, "
                              "Pacientes.apellido_paciente")
               + kJoins + kFilled
               + QStringLiteral(" ORDER BY Pacientes.nombre_paciente, "
                                "Pacientes.apellido_paciente, Factura.cod_paciente");
    case Query::PatientLeaves:
        return QStringLiteral("SELECT Factura.cod_paciente, Examenes.cod_descripcionexamen, "
                              "Examenes.examen, EvaluadoTemporal.correlativo")
               + kJoins + kFilled + QStringLiteral(" ORDER BY EvaluadoTemporal.correlativo");
    case Query::Lookup:
        // No filter on llenaresultado: whatever number is clicked is looked up.
        return QStringLiteral("SELECT EvaluadoTemporal.factura, EvaluadoTemporal.correlativo, "
                              "EvaluadoTemporal.examen, Pacientes.nombre_paciente, "
                              "Pacientes.apellido_paciente, Pacientes.sexo, "
                              "Pacientes.fecha_nacimiento, Factura.edad_paciente")
               + kJoins
               + QStringLiteral(" AND EvaluadoTemporal.correlativo = ?"
                                " ORDER BY EvaluadoTemporal.cod_descripcionexamen");
    }
    return {};
}

void Form3view::actualizarPendientes()
{
    QTreeWidget* tree = ui->TreeView1;
    m_shownNode = nullptr;
    tree->setUpdatesEnabled(false);
    const QSignalBlocker quiet(tree);
    tree->clear();
    try {
        if (ui->Option2->isChecked())
            buildByPatient();
        else
            buildByExam();
    } catch (...) {
        tree->setUpdatesEnabled(true);
        throw;
    }
    tree->collapseAll();
    tree->setUpdatesEnabled(true);
}

// Types, then the exams waiting under each, then one leaf per waiting unit.
// Each level is one query; nodes are found by their text through a hash.
// The whole forest is made apart and handed to the tree at once.
void Form3view::buildByExam()
{
    Recordset types;
    types.open(sql(Query::Types));
    QList<QTreeWidgetItem*> tops;
    QHash<QString, QTreeWidgetItem*> typeNode;
    tops.reserve(types.recordCount());
    for (int r = 0; r < types.recordCount(); ++r) {
        const QString text = types.valueAt(r, 1).toString();
        auto* node = new QTreeWidgetItem(QStringList{text});
        tops << node;
        typeNode.insert(text, typeNode.value(text, node));
    }

    Recordset exams;
    exams.open(sql(Query::ExamNodes));
    QHash<QString, QTreeWidgetItem*> examNode;
    QSet<QPair<QTreeWidgetItem*, QString>> placed;
    for (int r = 0; r < exams.recordCount(); ++r) {
        QTreeWidgetItem* type = typeNode.value(exams.valueAt(r, 1).toString());
        const QString examen = exams.valueAt(r, 2).toString();
        if (!type || placed.contains({type, examen}))
            continue;
        placed.insert({type, examen});
        auto* node = new QTreeWidgetItem(type, QStringList{examen});
        examNode.insert(examen, examNode.value(examen, node));
    }

    Recordset leaves;
    leaves.open(sql(Query::ExamLeaves));
    for (int r = 0; r < leaves.recordCount(); ++r) {
        if (QTreeWidgetItem* exam = examNode.value(leaves.valueAt(r, 1).toString()))
            new QTreeWidgetItem(exam, QStringList{leaves.valueAt(r, 0).toString()
                                                  + QStringLiteral("  ")
                                                  + fullName(leaves.valueAt(r, 2),
                                                             leaves.valueAt(r, 3))});
    }
    ui->TreeView1->addTopLevelItems(tops);
}

// One node per patient with waiting exams, its text beginning with the
// patient's code; under it one leaf per waiting unit.
void Form3view::buildByPatient()
{
    Recordset patients;
    patients.open(sql(Query::PatientNodes));
    QList<QTreeWidgetItem*> tops;
    QHash<std::int32_t, QTreeWidgetItem*> patientNode;
    tops.reserve(patients.recordCount());
    for (int r = 0; r < patients.recordCount(); ++r) {
        const std::int32_t code = toInt32(patients.valueAt(r, 0));
        auto* node = new QTreeWidgetItem(QStringList{
            QString::number(code) + QLatin1Char(' ')
            + fullName(patients.valueAt(r, 1), patients.valueAt(r, 2))});
        tops << node;
        patientNode.insert(code, patientNode.value(code, node));
    }

    Recordset leaves;
    leaves.open(sql(Query::PatientLeaves));
    for (int r = 0; r < leaves.recordCount(); ++r) {
        if (QTreeWidgetItem* patient = patientNode.value(toInt32(leaves.valueAt(r, 0))))
            new QTreeWidgetItem(patient, QStringList{leaves.valueAt(r, 3).toString()
                                                     + QStringLiteral("  ")
                                                     + leaves.valueAt(r, 2).toString()});
    }
    ui->TreeView1->addTopLevelItems(tops);
}

// ------------------------------------------------------------ the detail

void Form3view::clearDetail()
{
    for (QLabel* l : {ui->Label4, ui->Label5, ui->Label6, ui->Label8, ui->Label11, ui->Label12})
        l->clear();
    m_shownNode = nullptr;
}

void Form3view::clickNode(QTreeWidgetItem* item)
{
    if (!item)
        return;
    FlexGrid* g = ui->Grid1;
    if (g->rows() < 3)
        clearDetail();
    // Any node may begin with a number: a leaf with its correlativo, and in
    // the patient view a patient with his code, which is looked up the same.
    const std::int32_t correlativo = leadingNumber(item->text(0));
    if (correlativo <= 0)
        return;
    Recordset rs;
    rs.open(sql(Query::Lookup), {correlativo});
    // Closed at another bench since the last refresh: nothing new to show.
    if (rs.recordCount() == 0)
        return;
    const QString nombre = fullName(rs.valueAt(0, 3), rs.valueAt(0, 4));
    // Once exams of one patient are picked, another patient's exam is not shown.
    if (!(ui->Label4->text().isEmpty() || ui->Label4->text() == nombre || g->rows() < 3))
        return;
    ui->Label4->setText(nombre);
    QString edad = rs.valueAt(0, 7).toString();
    if (edad.trimmed().isEmpty() && ui->Option1->isChecked()) {
        const QDate birth = storedDate(rs.valueAt(0, 6));
        edad = birth.isValid()
                   ? QString::number(yearsBetween(birth, QDate::currentDate())) + QStringLiteral(" Años")
                   : QString();
    }
    ui->Label5->setText(edad);
    ui->Label6->setText(rs.valueAt(0, 5).toString());
    ui->Label8->setText(rs.valueAt(0, 2).toString());
    if (!ui->Label11->text().isEmpty())
        m_facturaAnterior = toInt32(ui->Label11->text());
    ui->Label11->setText(QString::number(toInt32(rs.valueAt(0, 0))));
    ui->Label12->setText(QString::number(toInt32(rs.valueAt(0, 1))));
    m_shownNode = item;
}

// ------------------------------------------------------------ the picks

void Form3view::resetGrid()
{
    FlexGrid* g = ui->Grid1;
    g->clear();
    g->setCols(PickCols);
    g->setRows(2);
    g->setTextMatrix(0, Examen, QStringLiteral("                    EXAMEN"));
    g->setTextMatrix(0, Paciente, QStringLiteral("        NOMBRE PACIENTE"));
    g->setTextMatrix(0, Edad, QStringLiteral("            EDAD"));
}

void Form3view::agregarExamen()
{
    FlexGrid* g = ui->Grid1;
    if (g->rows() >= 3 && g->textMatrix(1, Paciente) != ui->Label4->text()) {
        prompts().message(
            QStringLiteral("No puede agregar examenes de un paciente distinto, intente nuevamente"),
            Icon::Critical);
        clearDetail();
        return;
    }
    // One exam name once per sheet, whatever its correlativo.
    const QString examen = ui->Label8->text();
    for (int r = 1; r < g->rows(); ++r)
        if (g->textMatrix(r, Examen) == examen)
            return;
    if (examen.isEmpty())
        return;
    const int last = g->rows() - 1;
    g->setTextMatrix(last, Examen, examen);
    g->setTextMatrix(last, Paciente, ui->Label4->text());
    g->setTextMatrix(last, Edad, ui->Label5->text());
    g->setTextMatrix(last, Correlativo, ui->Label12->text());
    g->setTextMatrix(last, Factura, ui->Label11->text());
    g->setRows(g->rows() + 1);
    ui->Command3->setEnabled(false);
    ui->Label13->show();
    ui->Combo1->show();
    ui->Command6->show();
    // The picked exam leaves the tree so that it can't be picked again.
    delete m_shownNode;
    m_shownNode = nullptr;
    // Compared with the invoice shown before, not with the list: picks of
    // invoices A, B and A again list A twice. An invoice never listed yet is
    // always listed (the same leaf clicked twice before the pick would
    // otherwise leave its invoice out, and a blank sheet would save nothing).
    const std::int32_t factura = toInt32(ui->Label11->text());
    if (factura != m_facturaAnterior
        || ui->List1->findItems(ui->Label11->text(), Qt::MatchExactly).isEmpty())
        ui->List1->addItem(ui->Label11->text());
}

void Form3view::showSample(int code)
{
    if (code >= 1 && code <= 6) {
        ui->Image1->setPixmap(samplePicture(code));
        ui->Image1->setAccessibleDescription(ui->Combo1->currentText());
    } else {
        ui->Image1->clear();
        ui->Image1->setAccessibleDescription(QString());
    }
}

void Form3view::elegirPlantilla(int index)
{
    if (index < 0 || index >= ui->Combo1->count())
        return;
    const std::int32_t code = leadingNumber(ui->Combo1->itemText(index));
    if (code != kBlankTemplate && ui->List1->count() > 1) {
        prompts().message(QStringLiteral("Ha seleccionado examenes de diferente factura, solo "
                                         "puede usar formato en blanco"));
        const int blank = ui->Combo1->findText(QString::number(kBlankTemplate) + QStringLiteral("  "),
                                               Qt::MatchStartsWith);
        ui->Combo1->setCurrentIndex(blank >= 0 ? blank : 1);
        showSample(leadingNumber(ui->Combo1->currentText()));
        return;
    }
    showSample(code);
}

// ------------------------------------------------------------ the sheet

void Form3view::llenarResultado()
{
    // Proposed before anything is saved; the sheet's save checks it again.
    const std::int32_t id = proposeFormatId();
    state().idFormatoActual = id;
    state().idFormatoImpresion = id;
    const QString chosen = ui->Combo1->currentText();
    if (chosen == kPrompt || chosen.trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Seleccione la Plantilla a Utilizar"));
        return;
    }
    FlexGrid* g = ui->Grid1;
    g->setCol(Paciente);
    g->setRow(1);
    const std::int32_t code = leadingNumber(chosen);
    if (code < kBlankTemplate || code > kBlankTemplate2)
        return;

    sheets::SheetContext context;
    for (int r = 1; r < g->rows() - 1; ++r)
        context.picks.append({g->textMatrix(r, Examen), g->textMatrix(r, Paciente),
                              g->textMatrix(r, Edad), toInt32(g->textMatrix(r, Correlativo)),
                              toInt32(g->textMatrix(r, Factura))});
    for (int i = 0; i < ui->List1->count(); ++i)
        context.invoices.append(toInt32(ui->List1->item(i)->text()));
    context.factura = toInt32(ui->Label11->text());
    context.proposedFormatId = id;
    context.tecnico = state().currentUser;
    context.today = QDate::currentDate();
    if (sheets::openForWorkTable(code, context))
        cancelar();
}

void Form3view::cancelar()
{
    state().resultadoGuardado = false;
    resetGrid();
    ui->Label13->hide();
    ui->Combo1->hide();
    ui->Command6->hide();
    actualizarPendientes();
    showSample(0);
    ui->Command3->setEnabled(true);
    clearDetail();
    ui->List1->clear();
    m_facturaAnterior = 0;
    ui->Combo1->setCurrentIndex(-1);
    ui->Combo1->setEditText(kAfterCancel);
}
