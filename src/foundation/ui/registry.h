#pragma once
// Every screen can be created by its name. Screens register themselves with
// TQ_REGISTER_SCREEN in their own .cpp; the main menu, the start panel and
// the tests open them through here.
#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace tq {

using ScreenFactory = std::function<QWidget*(QWidget* parent)>;

class ScreenRegistry {
public:
    static ScreenRegistry& instance();
    bool add(const QString& name, ScreenFactory factory);
    bool has(const QString& name) const;
    // A new screen of that name, or nullptr when it isn't built.
    QWidget* create(const QString& name, QWidget* parent = nullptr) const;
    QStringList names() const;

    // A family of screens made from declarations rather than classes (the
    // report previews): `names` lists them, `make` builds one by name.
    // Screens added one by one come first when a name is in both.
    void addFamily(std::function<QStringList()> names,
                   std::function<QWidget*(const QString& name, QWidget* parent)> make);

private:
    struct Impl;
    Impl* d();
    const Impl* d() const;
};

// Creates and shows a screen modally through the prompt service. A screen
// that isn't built yet gets an honest notice instead. `prepare` runs on the
// new screen before it is shown (a caller setting a field first).
void openModal(const QString& name, const std::function<void(QWidget*)>& prepare = {});

// A screen that leads to a modal one steps aside for it: `from` is hidden,
// `next` runs (it opens the modal screen and returns when that closes), and
// `from` closes then, even when `next` fails.
void handOver(QWidget* from, const std::function<void()>& next);

// The notice for a menu entry whose screen is not built yet.
void notBuiltNotice(const QString& name);

}  // namespace tq

#define TQ_REGISTER_SCREEN(Class)                                                       \
    namespace {                                                                         \
    const bool tq_registered_##Class = ::tq::ScreenRegistry::instance().add(            \
        QStringLiteral(#Class), [](QWidget* parent) -> QWidget* { return new Class(parent); }); \
    }
