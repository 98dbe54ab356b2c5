#pragma once
// "Respaldo Base Datos": copies the store to a file the user picks and keeps
// a row in `respaldos` for each copy asked for.
#include "maintenance/backup.h"

#include <QString>
#include <QWidget>
#include <cstdint>
#include <memory>

class QTimer;

namespace Ui {
class frmBackup;
}

class frmBackup : public QWidget {
    Q_OBJECT
public:
    explicit frmBackup(QWidget* parent = nullptr);
    ~frmBackup() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void showLastBackup();
    void startBackup();
    void tick();
    // The end of a backup: the messages and the respaldos row; the screen
    // then closes unless it is already closing.
    void finish(bool closeAfter = true);

    std::unique_ptr<Ui::frmBackup> ui;
    QTimer* m_timer = nullptr;
    // Backup under way: 1 from the button until the bar is full.
    std::int16_t m_flag = 0;
    QString m_target;
    tq::BackupResult m_result;
};
