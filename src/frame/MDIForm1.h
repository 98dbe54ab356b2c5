#pragma once
// The main window: the whole menu of the laboratory and, inside, the start
// panel Form4 with the panel screens (patients, exams, employees, billing)
// opened under it.
#include <QMainWindow>
#include <QStringList>
#include <memory>

class Form4;
class QMdiArea;
class QMdiSubWindow;

namespace Ui {
class MDIForm1;
}

class MDIForm1 : public QMainWindow {
    Q_OBJECT
public:
    explicit MDIForm1(QWidget* parent = nullptr);
    ~MDIForm1() override;

    // The open main window, or nullptr.
    static MDIForm1* instance();
    // Shows the one main window, building it when none is open.
    static MDIForm1* showMain();

    // Entries and shortcuts closed to a limited user (rol 2).
    void applyLimitedRole();

    Form4* panel() const { return m_panel; }
    QMdiArea* area() const;
    // The panel screen of that name open in the main window, or nullptr.
    QWidget* panelScreen(const QString& name) const;
    // Where the panel screens open, below the start panel.
    QPoint panelScreenPlace() const;

    // What the start panel's pictures and the matching entries do.
    void openPacientes();
    void openExamenes();
    void openEmpleados();
    void openFacturacion(bool restart);
    void openResultados();

    // "Cerrar Sesion": this window goes, a fresh sign-on comes.
    void signOff();
    // "Salir": everything closes and the program ends.
    void quitSystem();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void wireMenu();
    void readCardPercentage();
    QWidget* openPanelScreen(const QString& name, const QStringList& closeFirst);
    void openModeless(const QString& name);
    void runReport(const QString& report, const QString& command, const QString& filter,
                   int heading);
    void fitPanel();

    std::unique_ptr<Ui::MDIForm1> ui;
    Form4* m_panel = nullptr;
    QMdiSubWindow* m_panelWindow = nullptr;
    bool m_signingOff = false;
    bool m_closing = false;
};
