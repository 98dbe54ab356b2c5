// The floor of the start-up path: the least a Qt program does to put a
// sign-on window on screen (two fields and a button), with the program's
// --tiempo-inicio behaviour: print the milliseconds until the window is
// exposed, then quit.
#include <QApplication>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <cstdio>

int main(int argc, char** argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    QApplication app(argc, argv);

    QWidget window;
    auto* form = new QFormLayout(&window);
    form->addRow(QStringLiteral("Usuario:"), new QLineEdit(&window));
    auto* password = new QLineEdit(&window);
    password->setEchoMode(QLineEdit::Password);
    form->addRow(QStringLiteral("Contraseña:"), password);
    form->addRow(new QPushButton(QStringLiteral("Ingresar"), &window));
    window.show();

    if (!app.arguments().contains(QStringLiteral("--tiempo-inicio")))
        return app.exec();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &app, [&] {
        if (!window.windowHandle() || !window.windowHandle()->isExposed())
            return;
        poll.stop();
        std::printf("%lld\n", static_cast<long long>(sinceStart.elapsed()));
        std::fflush(stdout);
        QCoreApplication::exit(0);
    });
    poll.start(1);
    return app.exec();
}
