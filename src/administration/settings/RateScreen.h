#pragma once
// The two single-rate settings screens: the card charge (IST) and the
// third-age discount (DTE). One behaviour, two tables and captions.
#include <QString>
#include <QWidget>
#include <memory>

namespace Ui {
class RateScreen;
}

class RateScreen : public QWidget {
    Q_OBJECT
public:
    // What tells the two screens apart. Table and column are fixed texts of
    // the program, never typed by the user.
    struct Config {
        QString screen;     // screen name and objectName
        QString title;      // window caption
        QString table;      // one-row table
        QString column;     // its value column
        QString caption;    // caption of Text1
        QString example;    // example value shown when a typed value is refused
    };

    ~RateScreen() override;
    // 1 when the table had no row (the save inserts), 2 when it has one.
    int mode() const { return m_mode; }

protected:
    RateScreen(const Config& config, QWidget* parent);

private:
    void load();
    void lock(bool locked);
    void save();

    Config m_config;
    std::unique_ptr<Ui::RateScreen> ui;
    int m_mode = 1;
};

// "% uso de Tarjeta": what the card company keeps, as a fraction (0.03).
class FInpuestoTarjeta : public RateScreen {
    Q_OBJECT
public:
    explicit FInpuestoTarjeta(QWidget* parent = nullptr);
};

// "% descuento 3ra Edad": the third-age discount as a factor of the subtotal.
class FdescuentoTedad : public RateScreen {
    Q_OBJECT
public:
    explicit FdescuentoTedad(QWidget* parent = nullptr);
};
