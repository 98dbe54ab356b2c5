#include "frame/Form7.h"

#include "ui_Form7.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "frame/accesos.h"
#include "frame/storeopening.h"

#include <QCloseEvent>
#include <QPalette>
#include <QTimer>

Form7::Form7(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Form7>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form7"));
    setAttribute(Qt::WA_DeleteOnClose);

    // Enter in the password signs on, as "Ingresar" does.
    connect(ui->Text2, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    tq::onClick(ui->Command1, QStringLiteral("ingresar al sistema"), [this] { ingresar(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);

    tq::whenStoreReady(this, [this] { storeReady(); });
    tq::state().screenNumber = 7;
    ui->Text1->setFocus();
}

Form7::~Form7()
{
    tq::state().screenNumber = 0;
}

// The laboratory's name over the fields. A store that did not open leaves
// the screen standing with the reason instead.
void Form7::loadLaboratory()
{
    if (!tq::amb1().isOpen()) {
        // Dark red, set here rather than by a style sheet, whose parsing
        // would cost every start-up.
        QPalette red = ui->lblAviso->palette();
        red.setColor(QPalette::WindowText, QColor(0xb0, 0, 0));
        ui->lblAviso->setPalette(red);
        ui->lblAviso->setText(tq::storeClosedMessage());
        ui->lblAviso->setVisible(true);
        return;
    }
    tq::guarded(QStringLiteral("leer los datos del laboratorio"), [this] {
        tq::Recordset& rs = tq::amb1().rs(QStringLiteral("rsmodulos"));
        if (rs.isOpen())
            rs.close();
        rs.open(QStringLiteral("Select * from datos"));
        if (rs.recordCount() > 0) {
            rs.moveFirst();
            ui->Label2->setText(rs.text(QStringLiteral("nombre_lab")));
        }
        rs.close();
    });
}

void Form7::storeReady()
{
    m_storeKnown = true;
    loadLaboratory();
    if (isVisible())
        warnStoreClosed();
}

// Told once the screen is up, so the user sees where it belongs.
void Form7::warnStoreClosed()
{
    if (m_warned || !m_storeKnown || tq::amb1().isOpen())
        return;
    m_warned = true;
    QTimer::singleShot(0, this, [] {
        tq::prompts().message(tq::storeClosedMessage(), tq::Icon::Critical);
    });
}

void Form7::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    warnStoreClosed();
}

void Form7::ingresar()
{
    tq::awaitStore();   // a press quicker than the store's opening waits for it
    const tq::SignOnOutcome outcome = tq::signOn(ui->Text1->text(), ui->Text2->text());
    if (outcome == tq::SignOnOutcome::StoreClosed)
        return;   // nothing to sign on against; the screen stays
    // Whatever the answer, the sign-on screen goes: a refusal thereby ends
    // the program and the user starts it again.
    m_signedOn = outcome == tq::SignOnOutcome::Granted;
    close();
}

void Form7::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    if (!m_signedOn)
        tq::endProgram();
}

TQ_REGISTER_SCREEN(Form7)
