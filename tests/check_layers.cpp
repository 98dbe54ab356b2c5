// The rooms of src/ only reach where the plan in docs/ARCHITECTURE.md lets
// them: a shared room of foundation/ never includes a subsystem's header, and a
// subsystem reaches another through its interfaces, never its screens (a
// header with a .ui beside it). The plan is read from the document itself, so
// the table and the rule cannot drift apart.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Room -> the rooms it may use; "foundation" stands for every shared room.
using Plan = std::map<std::string, std::set<std::string>>;

// The rows after the line "<!-- plan -->": | `room` | what it holds | `used`, `used` |
Plan readPlan(const fs::path& doc)
{
    Plan plan;
    std::ifstream in(doc);
    const std::regex row("^\\|\\s*`([a-z/]+)`[^|]*\\|[^|]*\\|([^|]*)\\|"), name("`([a-z/]+)`");
    bool inTable = false;
    for (std::string line; std::getline(in, line);) {
        inTable = inTable || line.find("<!-- plan -->") != std::string::npos;
        if (inTable && !plan.empty() && line.rfind('|', 0) != 0)
            break;   // the table has ended
        std::smatch m;
        if (!inTable || !std::regex_search(line, m, row))
            continue;
        std::set<std::string>& uses = plan[m[1]];
        const std::string used = m[2];
        for (auto it = std::sregex_iterator(used.begin(), used.end(), name); it != std::sregex_iterator(); ++it)
            uses.insert((*it)[1]);
    }
    return plan;
}

std::string roomOf(const std::string& rel)
{
    const auto slash = rel.find('/');
    if (slash == std::string::npos || rel.compare(0, slash, "foundation") != 0)
        return rel.substr(0, slash);
    return rel.substr(0, rel.find('/', slash + 1));
}

bool mayUse(const Plan& plan, const std::string& from, const std::string& to)
{
    const std::set<std::string>& uses = plan.at(from);
    return from == to || uses.count(to) || (to.rfind("foundation/", 0) == 0 && uses.count("foundation"));
}

// Every include of a header of src/ that breaks the plan, one line each.
std::vector<std::string> violations(const fs::path& src, const Plan& plan)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(src))
        if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<std::string> out;
    const std::regex include("^\\s*#\\s*include\\s+\"([^\"]+)\"");
    for (const fs::path& file : files) {
        const std::string rel = fs::relative(file, src).generic_string(), from = roomOf(rel);
        if (!plan.count(from)) {
            out.push_back(rel + ": the room " + from + " is not in the plan");
            continue;
        }
        std::ifstream in(file);
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch m;
            if (!std::regex_search(line, m, include) || !fs::exists(src / m[1].str()))
                continue;   // not ours: a generated form (ui_*.h) or Qt's
            const std::string header = m[1], to = roomOf(header);
            const std::string where = rel + ":" + std::to_string(number) + ": ";
            if (!plan.count(to))
                out.push_back(where + header + " is in a room that is not in the plan");
            else if (!mayUse(plan, from, to))
                out.push_back(where + from + " may not use " + to + " (" + header + ")");
            else if (from != to && to.rfind("foundation/", 0) != 0
                     && fs::exists(src / fs::path(header).replace_extension(".ui")))
                out.push_back(where + header + " is a screen of " + to + "; reach it through the room's interface");
        }
    }
    return out;
}

// The rule itself, on a small tree with one fault of each kind.
bool rulesCatchTheirFaults()
{
    const fs::path root = fs::temp_directory_path() / "tq_check_layers";
    fs::remove_all(root);
    const std::map<std::string, std::string> tree{
        {"foundation/base/values.h", ""},
        {"foundation/base/bad.cpp", "#include \"billing/pay.h\"\n"},
        {"billing/pay.h", "#include \"foundation/base/values.h\"\n"},
        {"billing/pay.cpp", "#include \"lab/Form3.h\"\n#include \"lab/lab.h\"\n"},
        {"lab/Form3.h", ""}, {"lab/Form3.ui", ""}, {"lab/lab.h", "#include \"lab/Form3.h\"\n"},
        {"stray/x.cpp", ""}};
    for (const auto& [path, text] : tree) {
        fs::create_directories((root / path).parent_path());
        std::ofstream(root / path) << text;
    }
    const Plan plan{{"foundation/base", {}}, {"billing", {"foundation", "lab"}}, {"lab", {"foundation"}}};
    const std::vector<std::string> found = violations(root, plan);
    fs::remove_all(root);
    const std::vector<std::string> expected{
        "billing/pay.cpp:1: lab/Form3.h is a screen of lab; reach it through the room's interface",
        "foundation/base/bad.cpp:1: foundation/base may not use billing (billing/pay.h)",
        "stray/x.cpp: the room stray is not in the plan"};
    if (found != expected)
        for (const std::string& v : found)
            std::cerr << "example: " << v << "\n";
    return found == expected;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2 || !rulesCatchTheirFaults()) {
        std::cerr << (argc != 2 ? "uso: check_layers CARPETA_DEL_PROYECTO\n" : "the rule misjudged its example\n");
        return 2;
    }
    const Plan plan = readPlan(fs::path(argv[1]) / "docs/ARCHITECTURE.md");
    std::vector<std::string> found;
    if (plan.size() < 8)
        found.push_back("docs/ARCHITECTURE.md has no plan table after <!-- plan -->");
    for (const auto& [room, uses] : plan)
        for (const std::string& used : uses)
            if (used != "foundation" && !plan.count(used))
                found.push_back("the plan lets " + room + " use " + used + ", which it does not list");
    if (found.empty())
        found = violations(fs::path(argv[1]) / "src", plan);
    for (const std::string& v : found)
        std::cerr << v << "\n";
    std::cout << plan.size() << " rooms, " << found.size() << " faults against the plan\n";
    return found.empty() ? 0 : 1;
}
