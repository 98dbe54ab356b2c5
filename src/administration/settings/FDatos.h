#pragma once
// "CONFIGURACION DE SISTEMA": the laboratory's name, heading texts, logo and
// the three switches of the single `datos` row.
#include <QString>
#include <QWidget>
#include <memory>

namespace Ui {
class FDatos;
}

class FDatos : public QWidget {
    Q_OBJECT
public:
    explicit FDatos(QWidget* parent = nullptr);
    ~FDatos() override;

    // 1 when `datos` had no row (the save inserts it), 2 when it has one.
    int mode() const { return m_mode; }

private:
    void load();
    void lock(bool locked);
    void showLogo(const QString& path);
    void chooseLogo();
    void save();

    std::unique_ptr<Ui::FDatos> ui;
    int m_mode = 1;
};
