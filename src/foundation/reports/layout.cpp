#include "foundation/reports/layout.h"

#include <QMap>
#include <memory>

namespace tq::report {

namespace {

struct Declared {
    std::function<Layout()> declaration;
    std::shared_ptr<const Layout> built;   // made the first time it is asked for
};

QMap<QString, Declared>& declared()
{
    static QMap<QString, Declared> d;
    return d;
}

}  // namespace

bool declareLayout(const QString& name, std::function<Layout()> declaration)
{
    declared().insert(name, {std::move(declaration), nullptr});
    return true;
}

const Layout* findLayout(const QString& name)
{
    const auto it = declared().find(name);
    if (it == declared().end())
        return nullptr;
    if (!it->built) {
        Layout l = it->declaration();
        if (l.name.isEmpty())
            l.name = name;
        it->built = std::make_shared<const Layout>(std::move(l));
    }
    return it->built.get();
}

QStringList layoutNames() { return declared().keys(); }

}  // namespace tq::report
