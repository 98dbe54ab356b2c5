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
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Room -> the rooms it may use. "foundation" stands for every shared room.
using Plan = std::map<std::string, std::set<std::string>>;

// The rows of the table that follows the marker line "<!-- plan -->":
// | `room` | what it holds | `used`, `used` |
Plan readPlan(const fs::path& doc)
{
    Plan plan;
    std::ifstream in(doc);
    std::string line;
    bool inTable = false;
    const std::regex name("`([a-z/]+)`");
    while (std::getline(in, line)) {
        if (line.find("<!-- plan -->") != std::string::npos) {
            inTable = true;
            continue;
        }
        if (!inTable)
            continue;
        if (line.rfind('|', 0) != 0) {
            if (!plan.empty())
                break;
            continue;
        }
        std::vector<std::string> cells;
        std::stringstream row(line.substr(1));
        for (std::string cell; std::getline(row, cell, '|');)
            cells.push_back(cell);
        if (cells.size() < 3)
            continue;
        std::smatch m;
        if (!std::regex_search(cells[0], m, name))
            continue;  // the header and the rule under it
        std::set<std::string>& uses = plan[m[1]];
        for (auto it = std::sregex_iterator(cells[2].begin(), cells[2].end(), name);
             it != std::sregex_iterator(); ++it)
            uses.insert((*it)[1]);
    }
    return plan;
}

std::string roomOf(const std::string& rel)
{
    const auto slash = rel.find('/');
    if (slash == std::string::npos)
        return rel;
    const std::string top = rel.substr(0, slash);
    if (top != "foundation")
        return top;
    const auto next = rel.find('/', slash + 1);
    return next == std::string::npos ? rel : rel.substr(0, next);
}

bool mayUse(const Plan& plan, const std::string& from, const std::string& to)
{
    if (from == to)
        return true;
    const std::set<std::string>& uses = plan.at(from);
    return uses.count(to) || (to.rfind("foundation/", 0) == 0 && uses.count("foundation"));
}

// Every include of a header of src/ that breaks the plan, one line each.
std::vector<std::string> violations(const fs::path& src, const Plan& plan)
{
    std::vector<std::string> out;
    const std::regex include("^\\s*#\\s*include\\s+\"([^\"]+)\"");
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        const std::string ext = entry.path().extension().string();
        if (entry.is_regular_file() && (ext == ".cpp" || ext == ".h"))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        const std::string rel = fs::relative(file, src).generic_string();
        const std::string from = roomOf(rel);
        if (!plan.count(from)) {
            out.push_back(rel + ": the room " + from + " is not in the plan");
            continue;
        }
        std::ifstream in(file);
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch m;
            if (!std::regex_search(line, m, include))
                continue;
            const std::string header = m[1];
            if (!fs::exists(src / header))
                continue;  // a generated form (ui_*.h) or a header of Qt's
            const std::string to = roomOf(header);
            const std::string where = rel + ":" + std::to_string(number) + ": ";
            if (!plan.count(to))
                out.push_back(where + header + " is in a room that is not in the plan");
            else if (!mayUse(plan, from, to))
                out.push_back(where + from + " may not use " + to + " (" + header + ")");
            else if (from != to && to.rfind("foundation/", 0) != 0 &&
                     fs::exists(src / fs::path(header).replace_extension(".ui")))
                out.push_back(where + header + " is a screen of " + to +
                              "; reach it through the room's interface");
        }
    }
    return out;
}

void write(const fs::path& path, const std::string& text)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

// The rule itself, on a small tree with one fault of each kind.
bool rulesCatchTheirFaults()
{
    const fs::path root = fs::temp_directory_path() / "tq_check_layers";
    fs::remove_all(root);
    write(root / "foundation/base/values.h", "#pragma once\n");
    write(root / "foundation/base/bad.cpp", "#include \"billing/pay.h\"\n");
    write(root / "billing/pay.h", "#include \"foundation/base/values.h\"\n");
    write(root / "billing/pay.cpp", "#include \"lab/Form3.h\"\n#include \"lab/lab.h\"\n");
    write(root / "lab/Form3.h", "");
    write(root / "lab/Form3.ui", "");
    write(root / "lab/lab.h", "#include \"lab/Form3.h\"\n");
    write(root / "stray/x.cpp", "");
    const Plan plan{{"foundation/base", {}}, {"billing", {"foundation", "lab"}}, {"lab", {"foundation"}}};
    const std::vector<std::string> found = violations(root, plan);
    fs::remove_all(root);
    const std::vector<std::string> expected{
        "billing/pay.cpp:1: lab/Form3.h is a screen of lab; reach it through the room's interface",
        "foundation/base/bad.cpp:1: foundation/base may not use billing (billing/pay.h)",
        "stray/x.cpp: the room stray is not in the plan"};
    if (found == expected)
        return true;
    std::cerr << "The layering rule misjudged its own example:\n";
    for (const std::string& v : found)
        std::cerr << "  " << v << "\n";
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "uso: check_layers CARPETA_DEL_PROYECTO\n";
        return 2;
    }
    if (!rulesCatchTheirFaults())
        return 1;
    const fs::path project = argv[1];
    const Plan plan = readPlan(project / "docs/ARCHITECTURE.md");
    if (plan.size() < 8) {
        std::cerr << "docs/ARCHITECTURE.md has no plan table after <!-- plan -->\n";
        return 1;
    }
    for (const auto& [room, uses] : plan)
        for (const std::string& used : uses)
            if (used != "foundation" && !plan.count(used)) {
                std::cerr << "The plan lets " << room << " use " << used << ", which it does not list\n";
                return 1;
            }
    const std::vector<std::string> found = violations(project / "src", plan);
    for (const std::string& v : found)
        std::cerr << v << "\n";
    std::cout << plan.size() << " rooms, " << found.size() << " includes against the plan\n";
    return found.empty() ? 0 : 1;
}
