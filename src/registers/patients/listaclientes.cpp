#include "registers/patients/listaclientes.h"

#include "ui_listaclientes.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "registers/patients/patientrow.h"

#include <QKeyEvent>
#include <QShortcut>

TQ_REGISTER_SCREEN(listaclientes)

using namespace tq;

namespace tq {

std::optional<ChosenPatient> choosePatientFromList()
{
    std::optional<ChosenPatient> chosen;
    openModal(QStringLiteral("listaclientes"), [&](QWidget* w) {
        if (auto* list = qobject_cast<listaclientes*>(w))
            list->onChosen([&chosen](const ChosenPatient& p) { chosen = p; });
    });
    return chosen;
}

}  // namespace tq

listaclientes::listaclientes(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::listaclientes>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("listaclientes"));
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    ui->List1->installEventFilter(this);
    connect(ui->List1, &QListWidget::itemDoubleClicked, this,
            [this] { guarded(QStringLiteral("elegir el paciente"), [this] { choose(); }); });

    guarded(QStringLiteral("cargar la lista de pacientes"), [this] {
        Recordset rs;
        rs.open(QStringLiteral("SELECT cod_paciente, nombre_paciente, apellido_paciente "
                               "FROM Pacientes ORDER BY nombre_paciente"));
        QStringList entries;
        entries.reserve(rs.recordCount());
        for (int r = 0; r < rs.recordCount(); ++r)
            entries << rs.valueAt(r, 0).toString() + QLatin1Char('\t') + rs.valueAt(r, 1).toString()
                           + QStringLiteral(", ") + rs.valueAt(r, 2).toString();
        ui->List1->addItems(entries);
    });
}

listaclientes::~listaclientes() = default;

void listaclientes::onChosen(std::function<void(const ChosenPatient&)> chosen)
{
    m_chosen = std::move(chosen);
}

bool listaclientes::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->List1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            guarded(QStringLiteral("elegir el paciente"), [this] { choose(); });
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void listaclientes::choose()
{
    const QListWidgetItem* item = ui->List1->currentItem();
    if (!item)
        return;
    const QString code = item->text().section(QLatin1Char('\t'), 0, 0);
    if (code.isEmpty())
        return;
    const auto patient = readPatient(toInt32(code), false);
    if (!patient) {
        prompts().message(QStringLiteral("El paciente elegido ya no está registrado."),
                          Icon::Exclamation);
        return;
    }
    if (m_chosen) {
        m_chosen(*patient);
        close();
        return;
    }
    // Opened on its own, the list leads to the blank hematology format for
    // the patient chosen.
    handOver(this, [name = patient->name] {
        openModal(QStringLiteral("datosimprimir"),
                  [name](QWidget* w) { w->setProperty("nombre", name); });
    });
}
