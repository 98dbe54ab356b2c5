#pragma once
// The administrator prompts: at a limited user's desk an administrator signs
// again to approve something. Form11 approves a discount or surcharge on an
// invoice; Form342 opens the correction of a stored result sheet.
#include <QString>
#include <QWidget>
#include <memory>

namespace Ui {
class AdminPrompt;
}

class AdminPrompt : public QWidget {
    Q_OBJECT
public:
    ~AdminPrompt() override;

protected:
    AdminPrompt(const QString& screen, QWidget* parent);

    // The refusal shown for a wrong password or a name that isn't an administrator.
    virtual QString refusal() const = 0;
    // Runs before any check, with the chosen name.
    virtual void beforeChecks(const QString&) {}
    // Runs once an administrator has signed; the prompt is already out of sight.
    virtual void granted() = 0;

private:
    void fillNames();
    void aceptar();
    bool isAdministrator(const QString& usuario, const QString& password) const;

    std::unique_ptr<Ui::AdminPrompt> ui;
};

// Approves a discount or surcharge, then opens the discount box Form10.
class Form11 : public AdminPrompt {
    Q_OBJECT
public:
    explicit Form11(QWidget* parent = nullptr);

protected:
    QString refusal() const override;
    void granted() override;
};

// Gate to the correction of stored result sheets: keeps the name chosen for
// the change log, then opens the correction list Form37.
class Form342 : public AdminPrompt {
    Q_OBJECT
public:
    explicit Form342(QWidget* parent = nullptr);

protected:
    QString refusal() const override;
    void beforeChecks(const QString& usuario) override;
    void granted() override;
};
