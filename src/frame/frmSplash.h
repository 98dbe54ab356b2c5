#pragma once
// The splash: the program's name and version for two seconds, then sign-on.
#include <QWidget>
#include <memory>

class QTimer;

namespace Ui {
class frmSplash;
}

class frmSplash : public QWidget {
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);
    ~frmSplash() override;

    QTimer* timer() const { return m_timer; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void timeUp();

    std::unique_ptr<Ui::frmSplash> ui;
    QTimer* m_timer = nullptr;   // Timer1
    bool m_toSignOn = false;
};
