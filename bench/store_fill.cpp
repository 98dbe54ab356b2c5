// The large store: two years of a busy laboratory in Tegucigalpa, written the
// way the program writes its rows (money through "#.00", dates as Qt binds
// them, yes/no as 0/1, store counters left to the store), through SQLite's C
// API in one transaction of prepared statements.
#include "store_fill.h"

#include "bare.h"

#include "foundation/base/passwords.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <sqlite3.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QTemporaryDir>
#include <QVector>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace bench {

namespace {

// Raise when the fill changes, so that stores made by an earlier fill are
// made again.
constexpr int kFillVersion = 6;

// splitmix64: the same numbers on every machine and standard library.
class Rng {
public:
    explicit Rng(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double unit() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }
    int below(int n) { return n <= 0 ? 0 : int(next() % std::uint64_t(n)); }
    int between(int lo, int hi) { return lo + below(hi - lo + 1); }
    bool chance(double p) { return unit() < p; }
    // An index below n where the first ones come up most: the common exams,
    // the regular patients.
    int skewed(int n, double power) { return std::min(n - 1, int(n * std::pow(unit(), power))); }
    template <typename T, std::size_t N>
    const T& pick(const T (&items)[N])
    {
        return items[below(int(N))];
    }

private:
    std::uint64_t m_state;
};

QString S(const char* text) { return QString::fromUtf8(text); }

// A money column that the save writes, or leaves at its default 0.
using Written = std::variant<int, QString>;

// Prices are quoted in whole lempiras, to the nearest five.
double roundToFive(double amount) { return std::max(5.0, std::round(amount / 5.0) * 5.0); }

double cents(double amount) { return std::round(amount * 100.0) / 100.0; }

const char* const kMen[] = {
    "Jose", "Juan", "Carlos", "Luis", "Jorge", "Mario", "Oscar", "Roberto", "Francisco", "Miguel",
    "Pedro", "Manuel", "Ricardo", "Fernando", "Daniel", "Javier", "Marco", "Hector", "Victor",
    "Raul", "Angel", "Kevin", "Josue", "Cristian", "David", "Alejandro", "Eduardo", "Julio",
    "Rafael", "Sergio", "Wilmer", "Edwin", "Nelson", "Marvin", "Allan", "Denis", "Erick", "Hugo",
    "Ramon", "Santos"};
const char* const kWomen[] = {
    "Maria", "Ana", "Rosa", "Carmen", "Gloria", "Karla", "Sofia", "Lucia", "Patricia", "Claudia",
    "Dania", "Lesly", "Nancy", "Wendy", "Marta", "Elena", "Isabel", "Sandra", "Silvia", "Jessica",
    "Paola", "Andrea", "Daniela", "Gabriela", "Fernanda", "Alejandra", "Carolina", "Melissa",
    "Yolanda", "Marlen", "Suyapa", "Reina", "Teresa", "Julia", "Iris", "Ligia", "Waleska",
    "Xiomara", "Dilcia", "Norma"};
const char* const kSurnames[] = {
    "Martinez", "Hernandez", "Lopez", "Garcia", "Rodriguez", "Mejia", "Flores", "Reyes", "Cruz",
    "Castillo", "Aguilar", "Zelaya", "Ramirez", "Paz", "Rivera", "Sanchez", "Gomez", "Diaz",
    "Perez", "Castro", "Velasquez", "Ordoñez", "Suazo", "Medina", "Pineda", "Funez", "Portillo",
    "Giron", "Amador", "Murillo", "Chavez", "Euceda", "Moncada", "Alvarado", "Padilla", "Nuñez",
    "Turcios", "Lagos", "Bonilla", "Romero", "Gutierrez", "Canales", "Banegas", "Matute",
    "Fonseca", "Bustillo", "Fiallos", "Rosales", "Calix", "Ortega", "Varela", "Maradiaga",
    "Mendoza", "Zuniga", "Osorio", "Carcamo", "Sierra", "Espinoza", "Rivas", "Galeas"};
const char* const kNeighbourhoods[] = {
    "Col. Kennedy", "Col. Miraflores", "Col. Palmira", "Col. Alameda", "Col. El Hogar",
    "Col. Las Colinas", "Col. San Angel", "Res. Las Hadas", "Res. Honduras", "Barrio La Granja",
    "Barrio Abajo", "Barrio El Centro", "Col. Trejo", "Col. Villa Olimpica", "Col. Hato de Enmedio",
    "Col. Loarque", "Col. Lomas del Guijarro", "Col. Cerro Grande", "Barrio Guamilito",
    "Col. 21 de Octubre"};
const char* const kTowns[] = {"Tegucigalpa", "Tegucigalpa", "Tegucigalpa", "Comayagüela",
                              "Valle de Angeles", "Santa Lucia", "Comayagua", "Danli"};

struct ExamType {
    const char* name;
    int plantilla;   // result template its sheets use
    int weight;      // share of the lines billed
    int minPrice, maxPrice;
    const char* delivery;
    std::vector<const char*> exams;   // most requested first
};

// Chemistry is also run on other specimens than serum.
const char* const kSpecimens[] = {"en Orina de 24 Horas", "en Orina al Azar",
                                  "en Liquido Cefalorraquideo", "en Liquido Pleural",
                                  "en Liquido Ascitico", "en Liquido Sinovial",
                                  "en Liquido Peritoneal"};
const char* const kOtherSpecimenAnalytes[] = {
    "Glucosa", "Proteinas Totales", "LDH", "Albumina", "Amilasa", "Creatinina", "Sodio",
    "Potasio", "Cloro", "Calcio", "Acido Urico", "Fosforo", "Magnesio", "Nitrogeno Ureico"};

std::vector<ExamType> examTypes()
{
    std::vector<ExamType> t = {
        {"Hematologia", 2, 25, 60, 200, "2 horas",
         {"Hemograma Completo", "Hemoglobina y Hematocrito", "Recuento de Plaquetas",
          "Velocidad de Eritrosedimentacion", "Tipo y Rh", "Recuento de Reticulocitos",
          "Frotis de Sangre Periferica", "Recuento de Leucocitos", "Formula Leucocitaria",
          "Gota Gruesa", "Celulas LE", "Prueba de Coombs Directa"}},
        {"Quimica Clinica", 4, 34, 60, 350, "Mismo dia",
         {"Glucosa en Ayunas", "Colesterol Total", "Trigliceridos", "Creatinina", "Acido Urico",
          "Perfil Lipidico", "Hemoglobina Glicosilada", "Glucosa Postprandial", "Nitrogeno Ureico",
          "Transaminasa TGO", "Transaminasa TGP", "Colesterol HDL", "Colesterol LDL",
          "Bilirrubina Total y Fraccionada", "Proteinas Totales", "Albumina", "Fosfatasa Alcalina",
          "Gamma GT", "Amilasa", "Lipasa", "LDH", "CPK Total", "CK-MB", "Sodio", "Potasio",
          "Cloro", "Calcio", "Fosforo", "Magnesio", "Hierro Serico", "Ferritina", "Transferrina",
          "Curva de Tolerancia a la Glucosa", "Microalbuminuria", "Depuracion de Creatinina",
          "Perfil Hepatico", "Perfil Renal", "Globulinas", "Relacion Albumina Globulina",
          "Capacidad de Fijacion de Hierro"}},
        {"Uroanalisis", 3, 12, 60, 150, "1 hora",
         {"Examen General de Orina", "Prueba de Embarazo en Orina", "Sedimento Urinario",
          "Proteinuria al Azar", "Glucosuria", "Cetonuria"}},
        {"Parasitologia", 5, 8, 60, 250, "1 hora",
         {"Examen General de Heces", "Sangre Oculta en Heces", "Coprologico Seriado",
          "Azucares Reductores en Heces", "Leucocitos en Heces", "Rotavirus en Heces",
          "Helicobacter pylori en Heces", "Cryptosporidium en Heces"}},
        {"Inmunologia", 1, 8, 120, 450, "Mismo dia",
         {"Proteina C Reactiva", "Antigenos Febriles", "Prueba de VIH", "VDRL",
          "Factor Reumatoideo", "Antiestreptolisina O", "Dengue NS1", "Dengue IgM", "Dengue IgG",
          "Hepatitis B Antigeno de Superficie", "Hepatitis C Anticuerpos", "Hepatitis A IgM",
          "Toxoplasma IgG", "Toxoplasma IgM", "Rubeola IgG", "Rubeola IgM",
          "Citomegalovirus IgG", "Citomegalovirus IgM", "Herpes Simple IgG", "Mononucleosis",
          "Chagas", "Helicobacter pylori en Sangre", "Inmunoglobulina E", "Complemento C3",
          "Complemento C4", "Anticuerpos Antinucleares", "Inmunoglobulina A", "Inmunoglobulina G",
          "Inmunoglobulina M", "Sifilis Prueba Treponemica", "Hepatitis B Anticuerpo Core",
          "Zika IgM", "Chikungunya IgM", "Leptospira IgM", "Brucella",
          "Helicobacter pylori IgG Cuantitativo"}},
        {"Hormonas", 1, 6, 250, 700, "24 horas",
         {"TSH", "T4 Libre", "T3 Libre", "Prolactina", "HCG Cuantitativa",
          "Antigeno Prostatico Especifico", "FSH", "LH", "Estradiol", "Progesterona",
          "Testosterona", "Cortisol", "Insulina", "T3 Total", "T4 Total", "PSA Libre",
          "Vitamina D", "Vitamina B12", "Acido Folico", "Hormona del Crecimiento",
          "Paratohormona", "Alfafetoproteina", "Antigeno Carcinoembrionario", "CA 125",
          "CA 19-9", "CA 15-3", "Androstenediona", "DHEA-S", "ACTH", "Aldosterona",
          "Hormona Antimulleriana", "Tiroglobulina", "Anticuerpos Anti-TPO", "Calcitonina"}},
        {"Microbiologia", 1, 3, 250, 600, "3 dias",
         {"Cultivo de Orina", "Cultivo de Heces", "Cultivo de Secrecion Vaginal",
          "Cultivo de Secrecion Faringea", "Baciloscopia", "Tincion de Gram", "KOH",
          "Cultivo de Esputo", "Hemocultivo", "Cultivo de Herida", "Frotis Vaginal",
          "Cultivo de Secrecion Uretral", "Cultivo de Liquido Cefalorraquideo",
          "Cultivo de Secrecion Otica", "Cultivo de Secrecion Ocular",
          "Urocultivo con Antibiograma", "Coprocultivo con Antibiograma", "Antibiograma"}},
        {"Coagulacion", 1, 2, 100, 300, "Mismo dia",
         {"Tiempo de Protrombina", "Tiempo de Tromboplastina Parcial", "Fibrinogeno",
          "Tiempo de Sangrado", "Tiempo de Coagulacion", "Dimero D"}},
        {"Perfiles", 1, 1, 400, 1500, "24 horas",
         {"Perfil Prenatal", "Perfil Preoperatorio", "Perfil Tiroideo", "Perfil de Diabetes",
          "Perfil Hormonal Femenino", "Perfil Cardiaco", "Perfil de Anemia", "Perfil Reumatoideo",
          "Chequeo Ejecutivo", "Perfil Pediatrico", "Perfil Geriatrico", "Perfil de Fertilidad"}},
        // Referred exams go to another laboratory; their names begin with "r.".
        {"Referidos", 1, 1, 500, 2500, "5 dias",
         {"r. Perfil Tiroideo Completo", "r. Cariotipo", "r. Citologia Cervical",
          "r. Electroforesis de Proteinas", "r. Electroforesis de Hemoglobina",
          "r. Prueba de Paternidad", "r. Carga Viral VIH", "r. Recuento de CD4",
          "r. PCR Tuberculosis", "r. Panel de Alergenos", "r. Inmunofijacion", "r. Homocisteina",
          "r. Troponina I", "r. Procalcitonina", "r. Anticuerpos Antitiroideos",
          "r. Cultivo de Hongos", "r. Biopsia de Piel", "r. Antigeno Prostatico Ultrasensible",
          "r. Biopsia de Mama", "r. Biopsia de Prostata", "r. Citologia de Liquidos",
          "r. Papanicolaou", "r. Panel Viral Respiratorio", "r. PCR SARS-CoV-2",
          "r. Anticuerpos Anti-CCP", "r. Anticuerpos Anti-DNA", "r. ANCA", "r. Cadenas Ligeras",
          "r. Beta 2 Microglobulina", "r. Calprotectina", "r. Elastasa Fecal", "r. Tacrolimus",
          "r. Niveles de Litio", "r. Niveles de Digoxina", "r. Acido Valproico", "r. Fenitoina",
          "r. Carbamazepina", "r. Panel de Drogas de Abuso"}},
        // Chemistry on other specimens than serum: the names are made below.
        {"Liquidos Corporales", 4, 1, 100, 400, "Mismo dia", {}},
    };
    return t;
}

struct Exam {
    int code = 0;
    QString name;
    int type = 0;        // index in examTypes()
    int plantilla = 1;
    double price = 0;
    bool takesResult = true;
};

struct Patient {
    QDate birth;
    int insurer = 0;   // 0: Sin Seguro
    bool insured = false;
    QString fullName;
};

struct Line {
    std::int16_t exam;   // index in exams
    std::int8_t units;
};

struct PlannedInvoice {
    QDate date;
    int patient;    // index in patients
    int doctor;     // code, 0 for none
    int firstLine;
    int lineCount;
};

// The parameters of the three grid templates, in print order; the names
// lay out the sheets again when they are printed.
struct Parameter {
    const char* name;
    const char* unit;
    const char* normal;
};
const char* const kLineBreak = "_____SALTO DE LINEA_____";
const Parameter kHematology[] = {
    {"Globulos Rojos", "millones/mm3", "4.0 - 5.9"}, {"Hemoglobina", "g/dL", "12.0 - 17.5"},
    {"Hematocrito", "%", "36 - 53"}, {"VCM", "fL", "80 - 100"}, {"HCM", "pg", "27 - 33"},
    {"CHCM", "g/dL", "32 - 36"}, {"Plaquetas", "/mm3", "150000 - 450000"},
    {kLineBreak, "", ""}, {kLineBreak, "", ""}, {kLineBreak, "", ""}, {kLineBreak, "", ""},
    {"Globulos Blancos", "/mm3", "4500 - 11000"}, {"Neutrofilos", "%", "50 - 70"},
    {"Linfocitos", "%", "20 - 40"}, {"Monocitos", "%", "2 - 8"}, {"Eosinofilos", "%", "1 - 4"},
    {"Basofilos", "%", "0 - 1"}};
const Parameter kUrinalysis[] = {
    {"Color", "Amarillo", ""}, {"Aspecto", "Claro", ""}, {"Densidad", "", ""}, {"pH", "", ""},
    {kLineBreak, "", ""}, {kLineBreak, "", ""}, {kLineBreak, "", ""},
    {"Proteinas", "Negativo", ""}, {"Glucosa en Orina", "Negativo", ""},
    {"Cetonas", "Negativo", ""}, {"Bilirrubina", "Negativo", ""}, {"Sangre", "Negativo", ""},
    {"Nitritos", "Negativo", ""}, {"Urobilinogeno", "Normal", ""}, {kLineBreak, "", ""},
    {kLineBreak, "", ""}, {"Leucocitos por Campo", "", ""}, {"Eritrocitos por Campo", "", ""},
    {"Celulas Epiteliales", "", ""}, {"Bacterias", "", ""}, {"Cristales", "", ""},
    {"Cilindros", "", ""}, {"Levaduras", "", ""}};
const Parameter kChemistry[] = {
    {"Glucosa", "mg/dL", "70 - 110"}, {"Colesterol Total", "mg/dL", "menor de 200"},
    {"Trigliceridos", "mg/dL", "menor de 150"}, {"Creatinina", "mg/dL", "0.6 - 1.3"},
    {"Acido Urico", "mg/dL", "2.4 - 7.0"}, {"Colesterol HDL", "mg/dL", "mayor de 40"},
    {"Colesterol LDL", "mg/dL", "menor de 130"}, {"Nitrogeno Ureico", "mg/dL", "7 - 20"},
    {"TGO", "U/L", "hasta 40"}, {"TGP", "U/L", "hasta 41"},
    {"Hemoglobina Glicosilada", "%", "4.0 - 6.0"}, {"Bilirrubina Total", "mg/dL", "0.2 - 1.2"},
    {"Proteinas Totales", "g/dL", "6.0 - 8.3"}, {"Albumina", "g/dL", "3.5 - 5.0"},
    {"Fosfatasa Alcalina", "U/L", "40 - 129"}, {"Sodio", "mEq/L", "135 - 145"},
    {"Potasio", "mEq/L", "3.5 - 5.1"}};

const char* const kVoidReasons[] = {
    "Error en el nombre del paciente", "Examen facturado por error",
    "El paciente no se presento a la toma de muestra", "Factura duplicada",
    "Cambio de forma de pago", "Cambio de seguro del paciente"};

const char* const kInsurers[][2] = {
    {"Seguros Atlantida", "Banco Atlantida"}, {"Pan American Life", "BAC Credomatic"},
    {"MAPFRE Honduras", "Banco Ficohsa"}, {"Seguros del Pais", "Banpais"},
    {"Seguros Crefisa", "Banco Lafise"}, {"Seguros Continental", "Banco Atlantida"},
    {"Seguros Equidad", "Banco de Occidente"}, {"Seguros Banrural", "Banrural"},
    {"Davivienda Seguros", "Davivienda"}, {"Seguros Lafise", "Banco Lafise"},
    {"Ficohsa Seguros", "Banco Ficohsa"}, {"ASSA Compañia de Seguros", "BAC Credomatic"},
    {"BMI Seguros", "Banco Promerica"}, {"Palic Salud", "Banco Atlantida"},
    {"Seguros Bolivar", "Banco de Occidente"}, {"Instituto de Prevision Militar", "Banhprovi"},
    {"Cooperativa Elga", "Banco Atlantida"}, {"Colegio de Profesores (PRICPHMA)", "Banpais"},
    {"ENEE Plan Medico", "Banco Central"}, {"Hondutel Plan de Salud", "Banco de Occidente"}};

const char* const kSupplyItems[][2] = {
    {"Tubo con EDTA 3 ml", "Caja"}, {"Tubo con EDTA 5 ml", "Caja"},
    {"Tubo seco 5 ml", "Caja"}, {"Tubo con citrato", "Caja"}, {"Tubo con heparina", "Caja"},
    {"Aguja vacutainer 21G", "Caja"}, {"Aguja vacutainer 22G", "Caja"},
    {"Jeringa 5 ml", "Caja"}, {"Lanceta", "Caja"}, {"Torniquete", "Unidad"},
    {"Algodon", "Paquete"}, {"Alcohol isopropilico", "Galon"}, {"Guantes de latex M", "Caja"},
    {"Guantes de nitrilo M", "Caja"}, {"Frasco para orina", "Paquete"},
    {"Frasco para heces", "Paquete"}, {"Porta objetos", "Caja"}, {"Cubre objetos", "Caja"},
    {"Tiras reactivas de orina", "Frasco"}, {"Colorante de Wright", "Frasco"},
    {"Colorante de Giemsa", "Frasco"}, {"Lugol", "Frasco"}, {"Solucion salina", "Frasco"},
    {"Reactivo de glucosa", "Kit"}, {"Reactivo de colesterol", "Kit"},
    {"Reactivo de trigliceridos", "Kit"}, {"Reactivo de creatinina", "Kit"},
    {"Reactivo de acido urico", "Kit"}, {"Reactivo de urea", "Kit"},
    {"Reactivo de TGO", "Kit"}, {"Reactivo de TGP", "Kit"}, {"Reactivo de HDL", "Kit"},
    {"Reactivo de bilirrubina", "Kit"}, {"Reactivo de proteinas", "Kit"},
    {"Reactivo de albumina", "Kit"}, {"Prueba rapida de embarazo", "Caja"},
    {"Prueba rapida de VIH", "Caja"}, {"Prueba rapida de dengue", "Caja"},
    {"Latex PCR", "Kit"}, {"Latex factor reumatoideo", "Kit"}, {"Antigenos febriles", "Kit"},
    {"Reactivo VDRL", "Kit"}, {"Sueros anti A, B y D", "Kit"}, {"Diluyente hematologico", "Galon"},
    {"Lisante hematologico", "Frasco"}, {"Control hematologico", "Frasco"},
    {"Puntas amarillas", "Bolsa"}, {"Puntas azules", "Bolsa"}, {"Papel termico", "Rollo"},
    {"Agar sangre", "Frasco"}};
const char* const kBrands[] = {"BD", "Greiner", "Vacutest", "Roche", "Wiener Lab", "Spinreact",
                               "Human", "BioSystems", "Linear", "Randox"};

// Every value that draws on the generator is drawn in a statement of its
// own, never two in one list of arguments, so that the store doesn't depend
// on the order in which a compiler evaluates them.
class Filler {
public:
    Filler(Connection* db, const Sizes& sizes) : m_db(db), m_sizes(sizes), m_rng(20240102) {}

    void run()
    {
        laboratory();
        staff();
        catalogue();
        insurers();
        doctors();
        patients();
        templates();
        supplies();
        purchases();
        invoices();
        orders();
    }

private:
    QString phone(const char* prefixes)
    {
        const int n = int(std::strlen(prefixes));
        return QStringLiteral("%1%2%3-%4")
            .arg(QChar::fromLatin1(prefixes[m_rng.below(n)]))
            .arg(m_rng.below(10))
            .arg(m_rng.between(10, 99))
            .arg(m_rng.between(0, 9999), 4, 10, QLatin1Char('0'));
    }
    QString address()
    {
        return QStringLiteral("%1, %2 %3, %4")
            .arg(S(m_rng.pick(kNeighbourhoods)))
            .arg(m_rng.chance(0.5) ? QStringLiteral("Casa") : QStringLiteral("Bloque"))
            .arg(m_rng.between(1, 60))
            .arg(S(m_rng.pick(kTowns)));
    }
    static QString mailName(QString text)
    {
        text = text.toLower();
        text.replace(QStringLiteral("ñ"), QStringLiteral("n"));
        text.replace(QLatin1Char(' '), QLatin1Char('.'));
        return text;
    }
    QString givenNames(bool woman, bool two)
    {
        QString n = S(woman ? m_rng.pick(kWomen) : m_rng.pick(kMen));
        if (two)
            n += QLatin1Char(' ') + S(woman ? m_rng.pick(kWomen) : m_rng.pick(kMen));
        return n;
    }
    QString surnames()
    {
        const QString first = S(m_rng.pick(kSurnames));
        return first + QLatin1Char(' ') + S(m_rng.pick(kSurnames));
    }
    // A value for a share of the rows only; the others store nothing.
    template <typename Make>
    auto maybe(double share, Make make) -> std::optional<decltype(make())>
    {
        if (!m_rng.chance(share))
            return std::nullopt;
        return make();
    }
    std::int64_t lastKey() const { return sqlite3_last_insert_rowid(m_db->file()); }

    void laboratory()
    {
        Stmt(m_db,
             "UPDATE datos SET nombre_lab = ?, eslogan_lab = ?, rtn_lab = ?, "
             "direccion_lab = ?, telefono_lab = ?, fax_lab = ?, correo_lab = ?")
            .row(S("Laboratorio Clinico San Rafael"),
                 S("Resultados confiables, atencion con calidez"), S("08019012345678"),
                 S("Col. Palmira, Ave. Republica de Chile, Tegucigalpa, M.D.C."),
                 S("2232-4578 / 9988-1122"), S("2232-4579"), S("info@labsanrafael.hn"));
        // Card charge and third-age discount as the laboratory set them.
        Stmt(m_db, "UPDATE IST SET IST = ?").row(0.04);
        Stmt(m_db, "UPDATE DTE SET DTE = ?").row(0.25);
    }

    // Employees sign on with hashed passwords; the first fifteen work the
    // front desk, the next fifteen fill results, the rest run the office.
    void staff()
    {
        Stmt insert(m_db, "INSERT INTO Empleados (nombre_empleado, apellido_empleado, "
                          "direccion_empleado, tel_empleado, cel_empleado, fecha_nacimiento, rol, "
                          "usuario, Password) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
        Stmt right(m_db, "INSERT INTO usuariosmodulos (cod_modulo, cod_empleado) VALUES (?, ?)");
        QSet<QString> taken{QStringLiteral("admin")};
        for (int i = 0; i < m_sizes.employees; ++i) {
            const bool woman = m_rng.chance(0.6);
            const QString nombre = givenNames(woman, true);
            const QString apellido = surnames();
            const QString base
                = i == 0 ? kSignOnUser
                         : mailName(nombre.left(1) + apellido.section(QLatin1Char(' '), 0, 0));
            QString usuario = base;
            for (int n = 2; taken.contains(usuario); ++n)
                usuario = base + QString::number(n);
            taken.insert(usuario);
            const QString password =
                i == 0 ? kSignOnPassword : QStringLiteral("%1-%2").arg(usuario).arg(1000 + i * 37);
            const QDate hired = kFirstDay.addYears(-10).addDays(m_rng.below(365 * 11));
            const QString direccion = address();
            const QString cel = phone("9383");
            insert.row(nombre, apellido, direccion, std::optional<QString>(), cel, hired,
                       i < 3 ? 1 : 2, usuario, tq::hashPassword(password));
            const int code = int(lastKey());
            for (int module = 1; module <= 3; ++module)
                right.row(module, code);
            if (i < 15)
                m_desk.push_back(usuario);
            else if (i < 30)
                m_technicians.push_back(usuario);
        }
        if (m_technicians.empty())
            m_technicians = m_desk;
    }

    void catalogue()
    {
        m_types = examTypes();
        Stmt type(m_db, "INSERT INTO TipoExamen (tipo_examen) VALUES (?)");
        Stmt exam(m_db, "INSERT INTO Examenes (examen, cod_tipo_examen, precio, precioo, valor, "
                        "tiempo_entrega, llenaresultado) VALUES (?, ?, ?, ?, ?, ?, ?)");
        for (int t = 0; t < int(m_types.size()); ++t) {
            const ExamType& et = m_types[t];
            type.row(S(et.name));
            const int typeCode = int(lastKey());
            std::vector<QString> names;
            for (const char* name : et.exams)
                names.push_back(S(name));
            if (et.exams.empty())
                for (const char* specimen : kSpecimens)
                    for (const char* analyte : kOtherSpecimenAnalytes)
                        names.push_back(S(analyte) + QLatin1Char(' ') + S(specimen));
            std::vector<int> ofType;
            for (const QString& name : names) {
                Exam e;
                e.name = name;
                e.type = t;
                e.plantilla = et.plantilla;
                e.takesResult = !e.name.startsWith(QLatin1String("r. "));
                e.price = roundToFive(m_rng.between(et.minPrice, et.maxPrice));
                // "valor", the cost from supplies, is worked out once the supplies exist.
                exam.row(e.name, typeCode, tq::money(e.price),
                         tq::money(roundToFive(e.price * 0.9)), tq::money(0.0), S(et.delivery),
                         e.takesResult);
                e.code = int(lastKey());
                ofType.push_back(int(m_exams.size()));
                m_exams.push_back(e);
            }
            m_examsOfType.push_back(ofType);
        }
    }

    int pickExam()
    {
        int total = 0;
        for (const ExamType& t : m_types)
            total += t.weight;
        int w = m_rng.below(total);
        int t = 0;
        while (w >= m_types[t].weight)
            w -= m_types[t++].weight;
        const std::vector<int>& ofType = m_examsOfType[t];
        return ofType[m_rng.skewed(int(ofType.size()), 2.2)];
    }

    void insurers()
    {
        Stmt insurer(m_db,
                     "INSERT INTO seguros (Cod_Seguro, Empresa, Contacto, Tel, Banco, Cuenta) "
                     "VALUES (?, ?, ?, ?, ?, ?)");
        Stmt price(m_db, "INSERT INTO RelSeguroPrecios (cod_seguro, Cod_descripcionexamen, precio) "
                         "VALUES (?, ?, ?)");
        const int count = int(std::size(kInsurers));
        m_insurerPrice.assign(count + 1, std::vector<double>(m_exams.size(), 0.0));
        for (int s = 1; s <= count; ++s) {
            const bool woman = m_rng.chance(0.5);
            const QString contacto = QStringLiteral("Lic. ") + givenNames(woman, false);
            const QString contact = contacto + QLatin1Char(' ') + S(m_rng.pick(kSurnames));
            const QString tel = phone("2");
            const QString cuenta = QStringLiteral("%1-%2-%3")
                                       .arg(m_rng.between(100, 999))
                                       .arg(m_rng.between(100000, 999999))
                                       .arg(m_rng.below(10));
            insurer.row(s, S(kInsurers[s - 1][0]), contact, tel, S(kInsurers[s - 1][1]), cuenta);
            // Each insurer pays its own share of the list price and leaves a
            // few exams out of its list.
            const double factor = 0.75 + 0.01 * m_rng.below(21);
            for (int e = 0; e < int(m_exams.size()); ++e) {
                if ((s * 7 + e) % 11 == 0)
                    continue;
                const double p = roundToFive(m_exams[e].price * factor);
                m_insurerPrice[s][e] = p;
                price.row(s, m_exams[e].code, tq::money(p));
            }
        }
    }

    void doctors()
    {
        Stmt insert(m_db, "INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, dir_doctor, "
                          "tel_doctor, correo_doctor, porsentaje) VALUES (?, ?, ?, ?, ?, ?)");
        const char* const places[] = {
            "Hospital Viera", "Clinica Santa Fe", "Centro Medico Hondureño", "Hospital San Felipe",
            "Clinica La Esperanza", "Hospital Honduras Medical Center",
            "Clinica Pediatrica Infantil", "Hospital La Policlinica"};
        const int rates[] = {0, 5, 8, 10, 12, 15};
        for (int i = 0; i < m_sizes.doctors; ++i) {
            const bool woman = m_rng.chance(0.45);
            const QString nombre = givenNames(woman, true);
            const QString apellido = surnames();
            const int rate = m_rng.pick(rates);
            const QString place = S(m_rng.pick(places));
            const QString dir = place + QStringLiteral(", ") + S(m_rng.pick(kNeighbourhoods));
            const QString tel = phone("2");
            const auto correo = maybe(0.6, [&] {
                return mailName(nombre.left(1) + apellido.section(QLatin1Char(' '), 0, 0))
                       + QStringLiteral("@medicoshn.com");
            });
            insert.row(nombre, apellido, dir, tel, correo, rate);
            m_doctorRate.push_back(rate);
        }
    }

    // Ages from newborns to 95, more of them young; one in five insured.
    void patients()
    {
        Stmt insert(m_db,
                    "INSERT INTO Pacientes (nombre_paciente, apellido_paciente, sexo, "
                    "fecha_nacimiento, tel_paciente, cel_paciente, direccion_paciente, correo, "
                    "fax_cliente, asegurado, eadulto, Cod_seguro) "
                    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        const int insurerCount = int(std::size(kInsurers));
        m_patients.reserve(m_sizes.patients);
        for (int i = 0; i < m_sizes.patients; ++i) {
            const bool woman = m_rng.chance(0.54);
            const QString nombre = givenNames(woman, m_rng.chance(0.7));
            const QString apellido = surnames();
            const int age = m_rng.skewed(96, 1.25);
            Patient p;
            p.birth = kLastDay.addYears(-age).addDays(-m_rng.below(365));
            p.insured = m_rng.chance(0.2);
            p.insurer = p.insured ? 1 + m_rng.below(insurerCount) : 0;
            p.fullName = nombre + QLatin1Char(' ') + apellido;
            const bool teen = age >= 12 && age < 16;
            const auto tel = maybe(0.4, [&] { return phone("2"); });
            const auto cel = maybe(0.85, [&] { return phone("9383"); });
            const QString direccion = address();
            const auto correo = maybe(0.15, [&] {
                return mailName(nombre.section(QLatin1Char(' '), 0, 0) + QLatin1Char(' ')
                                + apellido.section(QLatin1Char(' '), 0, 0))
                       + QStringLiteral("@correo.hn");
            });
            const auto fax = maybe(0.01, [&] { return phone("2"); });
            const bool adult = teen && m_rng.chance(0.2);
            insert.row(nombre, apellido,
                       woman ? QStringLiteral("Femenino") : QStringLiteral("Masculino"), p.birth,
                       tel, cel, direccion, correo, fax, p.insured, adult, p.insurer);
            m_patients.push_back(p);
        }
    }

    // Version 1 of the three grid templates, with their normal values.
    void templates()
    {
        Stmt parameter(
            m_db, "INSERT INTO parametros (cod_parametro, parametro, unidad) VALUES (?, ?, ?)");
        Stmt normal(m_db, "INSERT INTO valparametros (cod_parametro, cod_sexo, valor_normal) "
                          "VALUES (?, ?, ?)");
        Stmt place(m_db,
                   "INSERT INTO PlantillaParametro (Cod_Plantilla, cod_Parametro, version, orden) "
                   "VALUES (?, ?, ?, ?)");
        QHash<QString, int> codes;
        auto layout = [&](int plantilla, const Parameter* params, int count) {
            for (int i = 0; i < count; ++i) {
                const QString name = S(params[i].name);
                if (!codes.contains(name)) {
                    const int code = int(codes.size()) + 1;
                    codes.insert(name, code);
                    parameter.row(code, name, S(params[i].unit));
                    if (*params[i].normal)
                        normal.row(code, 4,
                                   S(params[i].normal) + QLatin1Char(' ') + S(params[i].unit));
                }
                place.row(plantilla, codes.value(name), 1, i);
            }
        };
        layout(2, kHematology, int(std::size(kHematology)));
        layout(3, kUrinalysis, int(std::size(kUrinalysis)));
        layout(4, kChemistry, int(std::size(kChemistry)));
    }

    void supplies()
    {
        Stmt supply(m_db,
                    "INSERT INTO Insumos (Cod_Item, nombre_Item, descripcion_Item, precio_Item, "
                    "unidad, cminima, stock) VALUES (?, ?, ?, ?, ?, ?, ?)");
        Stmt supplier(m_db,
                      "INSERT INTO proveedor (prvcod, prvnom, prvref, prvdir, prvtel, prvcor) "
                      "VALUES (?, ?, ?, ?, ?, ?)");
        Stmt offers(m_db, "INSERT INTO proveedoresinsumos (prvcod, cod_item) VALUES (?, ?)");
        Stmt uses(
            m_db,
            "INSERT INTO Relacion (Cod_Descripcionexamen, Cod_Item, Cantidad) VALUES (?, ?, ?)");
        Stmt cost(m_db, "UPDATE Examenes SET valor = ? WHERE cod_descripcionexamen = ?");

        const int items = int(std::size(kSupplyItems));
        for (int i = 0; i < m_sizes.supplies; ++i) {
            const char* const* item = kSupplyItems[i % items];
            const double price = m_rng.between(20, 2500) / 10.0;
            const int minimum = m_rng.between(2, 20);
            // One in twenty is at or below its minimum.
            const int stock
                = m_rng.chance(0.05) ? m_rng.between(0, minimum) : m_rng.between(minimum + 1, 200);
            supply.row(i + 1,
                       QStringLiteral("%1 %2").arg(S(item[0]),
                                                   S(kBrands[(i / items) % std::size(kBrands)])),
                       QStringLiteral("Presentacion por %1").arg(S(item[1]).toLower()),
                       tq::money(price), S(item[1]), minimum, stock);
            m_supplyPrice.push_back(price);
        }
        const char* const kinds[] = {"Distribuidora", "Droguería", "Importadora", "Suministros"};
        for (int p = 1; p <= m_sizes.suppliers; ++p) {
            const QString surname = S(m_rng.pick(kSurnames));
            const QString name = S(m_rng.pick(kinds)) + QLatin1Char(' ') + surname;
            const QString contact = QStringLiteral("Ing. ") + givenNames(m_rng.chance(0.5), false);
            const QString reference = contact + QLatin1Char(' ') + S(m_rng.pick(kSurnames));
            const QString direccion = address();
            const QString tel = phone("2");
            supplier.row(p, name, reference, direccion, tel,
                         QStringLiteral("ventas@%1.hn").arg(mailName(surname)));
        }
        m_offeredBy.assign(m_sizes.suppliers + 1, {});
        for (int i = 1; i <= m_sizes.supplies && m_sizes.suppliers > 0; ++i) {
            const int first = 1 + m_rng.below(m_sizes.suppliers);
            offers.row(first, i);
            m_offeredBy[first].push_back(i);
            const int second = 1 + m_rng.below(m_sizes.suppliers);
            if (second != first && m_rng.chance(0.4)) {
                offers.row(second, i);
                m_offeredBy[second].push_back(i);
            }
        }
        // What each exam that takes a result consumes; its cost follows.
        for (const Exam& e : m_exams) {
            if (!e.takesResult || m_sizes.supplies == 0)
                continue;
            double value = 0;
            const int n = m_rng.between(1, 3);
            for (int k = 0; k < n; ++k) {
                const int item = 1 + m_rng.below(m_sizes.supplies);
                const double amount = m_rng.chance(0.3) ? 0.5 : m_rng.between(1, 2);
                uses.row(e.code, item, amount);
                value += amount * m_supplyPrice[item - 1];
            }
            cost.row(tq::money(cents(value)), e.code);
        }
    }

    void purchases()
    {
        Stmt purchase(m_db,
                      "INSERT INTO compra (numcompra, fecha, prvcod, total) VALUES (?, ?, ?, ?)");
        Stmt line(m_db, "INSERT INTO compradetalle (numcompra, cod_item, cantidad, preciodecompra, "
                        "subtotal) VALUES (?, ?, ?, ?, ?)");
        const int days = int(kFirstDay.daysTo(kLastDay));
        for (int n = 1; n <= m_sizes.purchases && m_sizes.suppliers > 0; ++n) {
            const QDate date
                = kFirstDay.addDays(qint64(days) * (n - 1) / std::max(1, m_sizes.purchases));
            const int prv = 1 + m_rng.below(m_sizes.suppliers);
            const std::vector<int>& offered = m_offeredBy[prv];
            if (offered.empty()) {
                purchase.row(n, date, prv, tq::money(0.0));
                continue;
            }
            const int lines = m_rng.between(1, 6);
            double total = 0;
            struct Bought { int item; int qty; double price; };
            std::vector<Bought> bought;
            for (int k = 0; k < lines; ++k) {
                const int item = offered[m_rng.below(int(offered.size()))];
                const Bought b{item, m_rng.between(1, 40), m_supplyPrice[item - 1]};
                total += cents(b.qty * b.price);
                bought.push_back(b);
            }
            purchase.row(n, date, prv, tq::money(total));
            for (const Bought& b : bought)
                line.row(n, b.item, b.qty, tq::money(b.price), tq::money(cents(b.qty * b.price)));
        }
    }

    // ---- invoices -------------------------------------------------------

    // Open days (Sundays closed), Saturdays at half a weekday's trade.
    std::vector<QDate> invoiceDates() const
    {
        std::vector<QDate> days;
        std::vector<int> weight;
        int total = 0;
        for (QDate d = kFirstDay; d <= kLastDay; d = d.addDays(1)) {
            const int w = d.dayOfWeek() == Qt::Sunday ? 0 : d.dayOfWeek() == Qt::Saturday ? 6 : 10;
            if (w == 0)
                continue;
            days.push_back(d);
            weight.push_back(w);
            total += w;
        }
        std::vector<QDate> dates;
        dates.reserve(m_sizes.invoices);
        qint64 cumulative = 0;
        for (std::size_t i = 0; i < days.size(); ++i) {
            const qint64 before = cumulative * m_sizes.invoices / total;
            cumulative += weight[i];
            const qint64 after = cumulative * m_sizes.invoices / total;
            for (qint64 k = before; k < after; ++k)
                dates.push_back(days[i]);
        }
        return dates;
    }

    // Which invoices, of whom, with which exams: laid out first, so that the
    // work table can take the newest exams and the kept sheets the ones before.
    void planInvoices()
    {
        const std::vector<QDate> dates = invoiceDates();
        const int n = m_sizes.invoices;
        const int mean = std::max(1, m_sizes.lines / std::max(1, n));
        std::vector<int> counts(n);
        qint64 sum = 0;
        for (int& c : counts) {
            c = m_rng.between(1, 2 * mean - 1);
            sum += c;
        }
        // Exactly the lines asked for, each invoice keeping 1 to 12.
        for (qint64 diff = m_sizes.lines - sum; diff != 0 && n > 0;) {
            int& c = counts[m_rng.below(n)];
            if (diff > 0 && c < 12) {
                ++c;
                --diff;
            } else if (diff < 0 && c > 1) {
                --c;
                ++diff;
            }
        }
        m_invoices.reserve(n);
        m_lines.reserve(m_sizes.lines);
        for (int i = 0; i < n; ++i) {
            PlannedInvoice inv;
            inv.date = dates[i];
            // Regular patients come back; nobody is billed before being born.
            inv.patient = m_rng.skewed(m_sizes.patients, 1.3);
            for (int tries = 0; m_patients[inv.patient].birth > inv.date; ++tries)
                inv.patient = tries < 50 ? m_rng.below(m_sizes.patients)
                                         : (inv.patient + 1) % m_sizes.patients;
            inv.doctor
                = m_rng.chance(0.4) && m_sizes.doctors > 0 ? 1 + m_rng.below(m_sizes.doctors) : 0;
            inv.firstLine = int(m_lines.size());
            inv.lineCount = counts[i];
            QSet<int> chosen;
            for (int k = 0; k < counts[i]; ++k) {
                int e = pickExam();
                for (int tries = 0; chosen.contains(e) && tries < 30; ++tries)
                    e = pickExam();
                chosen.insert(e);
                m_lines.push_back(Line{std::int16_t(e), std::int8_t(m_rng.chance(0.03) ? 2 : 1)});
            }
            m_invoices.push_back(inv);
        }
        regularPatient();
    }

    // The most regular patient (the first) comes back until about two
    // hundred of his exams take a result: his history is a long one.
    void regularPatient()
    {
        const int wanted = std::max(2, m_sizes.lines / 5000);
        const auto results = [this](const PlannedInvoice& inv) {
            int n = 0;
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l)
                n += m_exams[m_lines[l].exam].takesResult ? 1 : 0;
            return n;
        };
        int have = 0;
        for (const PlannedInvoice& inv : m_invoices)
            have += inv.patient == 0 ? results(inv) : 0;
        const int n = int(m_invoices.size());
        for (int i = 13; i < n && have < wanted; i += 97) {
            PlannedInvoice& inv = m_invoices[i];
            if (inv.patient == 0 || m_patients[0].birth > inv.date)
                continue;
            inv.patient = 0;
            have += results(inv);
        }
    }

    // The templates of the sheets that close an invoice's exams, in the
    // order they are filled.
    std::vector<int> sheetTemplates(const PlannedInvoice& inv) const
    {
        std::vector<int> out;
        for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l) {
            const Exam& e = m_exams[m_lines[l].exam];
            if (e.takesResult && std::find(out.begin(), out.end(), e.plantilla) == out.end())
                out.push_back(e.plantilla);
        }
        return out;
    }

    void invoices()
    {
        planInvoices();
        const int n = int(m_invoices.size());
        m_voided.resize(n);
        for (int i = 0; i < n; ++i)
            m_voided[i] = m_rng.chance(0.015);

        // The newest exams wait on the work table; the sheets kept are those
        // of the invoices just before. Older results were filled before the
        // laboratory kept its sheets in this store: closed lines, no sheet.
        int onTable = n;
        for (int units = 0; onTable > 0 && units < m_sizes.waiting;) {
            --onTable;
            const PlannedInvoice& inv = m_invoices[onTable];
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l)
                units += m_lines[l].units;
        }
        int withSheets = onTable;
        for (int sheets = 0; withSheets > 0;) {
            const int more = m_voided[withSheets - 1]
                                 ? 0
                                 : int(sheetTemplates(m_invoices[withSheets - 1]).size());
            if (sheets + more > m_sizes.sheets)
                break;
            sheets += more;
            --withSheets;
        }
        // The newest sheets are filled but not printed yet: about one line in
        // two hundred waits in the pending list.
        int firstUnprinted = onTable;
        for (int pending = 0; firstUnprinted > withSheets && pending < m_sizes.lines / 200;) {
            --firstUnprinted;
            if (m_voided[firstUnprinted])
                continue;
            const PlannedInvoice& inv = m_invoices[firstUnprinted];
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l)
                pending += m_exams[m_lines[l].exam].takesResult ? 1 : 0;
        }

        Stmt invoice(
            m_db,
            "INSERT INTO Factura (factura, fecha, cod_paciente, faturado, sub_total, adicional, "
            "valadicional, total, efectivo, tarjeta, cheque, Abono, pagada, credito, "
            "edad_paciente, Cod_doctor, pagada_doc, comision_pagada, fecha_pag_doc, anulada, "
            "motivo_anulacion, fecha_anulacion, evaluada, tipo_factura) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        Stmt detail(m_db, "INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad, "
                          "subtotal, evaluado, impreso, num_impresion, tecnico, fecha_llenado, "
                          "iduniversalformato) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        Stmt receivable(m_db,
                        "INSERT INTO cxc (factura, Cod_paciente, estado, fecha_pago, referencia) "
                        "VALUES (?, ?, ?, ?, ?)");
        Stmt instalment(m_db,
                        "INSERT INTO creditos (factura, numero, fecha, abono) VALUES (?, ?, ?, ?)");
        Stmt card(m_db, "INSERT INTO Datostarjeta (factura, num_autorizacion, num_tarjeta, "
                        "num_identidad) VALUES (?, ?, ?, ?)");
        Stmt waiting(m_db, "INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen, examen, "
                           "decrementado) VALUES (?, ?, ?, ?)");
        Stmt cell(m_db,
                  "INSERT INTO resultados (num_factura, NumFormato, Cod_Plantilla, celda, valor, "
                  "version, iduniversalformato) VALUES (?, ?, ?, ?, ?, ?, ?)");

        int formatId = 0;
        for (int i = 0; i < n; ++i) {
            const PlannedInvoice& inv = m_invoices[i];
            const int number = i + 1;
            const Patient& patient = m_patients[inv.patient];
            const bool voided = m_voided[i];

            // Lines, priced from the insurer's list for an insured patient.
            std::vector<double> amounts;
            double subTotal = 0;
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l) {
                const Line& line = m_lines[l];
                double price = m_exams[line.exam].price;
                if (patient.insured && m_insurerPrice[patient.insurer][line.exam] > 0)
                    price = m_insurerPrice[patient.insurer][line.exam];
                amounts.push_back(price * line.units);
                subTotal += price * line.units;
            }
            std::optional<QString> extra;
            double extraAmount = 0;
            double total = subTotal;
            if (m_rng.chance(0.08)) {
                extra = QStringLiteral("Descuento");
                extraAmount = cents(subTotal * 0.10);
                total = subTotal - extraAmount;
            } else if (m_rng.chance(0.02)) {
                extra = QStringLiteral("Recargo");
                extraAmount = 50;
                total = subTotal + extraAmount;
            }

            // How it was paid (the forms of a save), and what came after.
            const bool toInsurer = patient.insured && m_rng.chance(0.75);
            const double kind = m_rng.unit();
            const bool onCredit = !toInsurer && kind >= 0.90;
            double cash = 0, onCard = 0, cheque = 0;   // an insurer's invoice: nothing now
            if (toInsurer) {
                // The whole total stays owed by the insurer.
            } else if (onCredit) {
                const double now
                    = std::min(total, roundToFive(total * (0.3 + 0.1 * m_rng.below(5))));
                (m_rng.chance(0.2) ? onCard : cash) = now;
            } else if (kind < 0.78) {
                cash = total;
            } else if (kind < 0.87) {
                onCard = total;
            } else {
                cheque = total;
            }
            const double paidNow = cash + onCard + cheque;
            double abono = toInsurer ? 0 : paidNow;
            bool paid = !toInsurer && !onCredit;
            std::vector<std::pair<QDate, double>> laterPayments;
            std::optional<QDate> insurerPaid;
            if (onCredit) {
                double owed = total - paidNow;
                const int parts = m_rng.between(1, 3);
                QDate when = inv.date;
                for (int k = 0; k < parts && owed > 0.005; ++k) {
                    when = when.addDays(m_rng.between(7, 30));
                    if (when > kLastDay || m_rng.chance(0.05))
                        break;
                    const double part = k == parts - 1 ? owed : roundToFive(owed / (parts - k));
                    const double amount = std::min(owed, part);
                    laterPayments.emplace_back(when, amount);
                    owed = cents(owed - amount);
                    abono += amount;
                }
                paid = owed <= 0.005;
            } else if (toInsurer) {
                const QDate when = inv.date.addDays(m_rng.between(30, 75));
                if (when <= kLastDay && m_rng.chance(0.92)) {
                    insurerPaid = when;
                    paid = true;
                }
            }

            std::optional<int> doctor;
            bool commissionPaid = false;
            std::optional<QDate> commissionDate;
            if (inv.doctor > 0) {
                doctor = inv.doctor;
                const QDate nextMonth = QDate(inv.date.year(), inv.date.month(), 1).addMonths(1);
                if (!voided && nextMonth <= kLastDay) {
                    commissionPaid = true;
                    commissionDate = nextMonth;
                }
            }
            const double commission =
                commissionPaid ? cents(total * m_doctorRate[inv.doctor - 1] / 100.0) : 0.0;

            const QString faturado = m_desk[m_rng.below(int(m_desk.size()))];
            std::optional<QString> reason;
            std::optional<QDate> voidedOn;
            if (voided) {
                reason = S(m_rng.pick(kVoidReasons));
                voidedOn = std::min(kLastDay, inv.date.addDays(m_rng.below(3)));
            }
            invoice.row(number, inv.date, inv.patient + 1, faturado, tq::money(subTotal), extra,
                        extra ? Written(tq::money(extraAmount)) : Written(0), tq::money(total),
                        tq::money(cash), tq::money(onCard), tq::money(cheque), tq::money(abono),
                        paid, onCredit || toInsurer, tq::calculoedad(patient.birth, inv.date).text,
                        doctor, commissionPaid,
                        commissionPaid ? Written(tq::money(commission)) : Written(0),
                        commissionDate, voided, reason, voidedOn, false, Null{});

            if (toInsurer) {
                std::optional<QString> reference;
                if (insurerPaid && m_rng.chance(0.6))
                    reference = QStringLiteral("Cheque No. %1").arg(m_rng.between(10000, 99999));
                else if (insurerPaid)
                    reference =
                        QStringLiteral("Transferencia %1").arg(m_rng.between(100000, 999999));
                receivable.row(number, inv.patient + 1, insurerPaid.has_value(), insurerPaid,
                               reference);
            }
            if (toInsurer || onCredit) {
                instalment.row(number, 1, inv.date, tq::money(toInsurer ? 0.0 : paidNow));
                int k = 2;
                for (const auto& [when, amount] : laterPayments)
                    instalment.row(number, k++, when, tq::money(amount));
            }
            if (onCard > 0) {
                const int charge = m_rng.between(100000, 999999);
                card.row(number, charge, patient.fullName,
                         QStringLiteral("0801-%1-%2")
                             .arg(patient.birth.year())
                             .arg(m_rng.between(0, 99999), 5, 10, QLatin1Char('0')));
            }

            // The exams: waiting, closed by a kept sheet, or closed long ago.
            const bool waits = i >= onTable;
            const bool sheets = !waits && i >= withSheets && !voided;
            const bool closed = !waits && !voided;
            std::vector<int> ids;   // format id of each template's sheet
            std::vector<int> templatesHere;
            if (sheets) {
                templatesHere = sheetTemplates(inv);
                for (std::size_t k = 0; k < templatesHere.size(); ++k)
                    ids.push_back(++formatId);
            }
            const QDate filled = std::min(kLastDay, inv.date.addDays(m_rng.below(2)));
            const QString technician = m_technicians[m_rng.below(int(m_technicians.size()))];
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount; ++l) {
                const Line& line = m_lines[l];
                const Exam& exam = m_exams[line.exam];
                const bool done = closed && exam.takesResult;
                std::optional<double> id;
                bool printed = done;
                if (done && sheets) {
                    const auto at
                        = std::find(templatesHere.begin(), templatesHere.end(), exam.plantilla);
                    id = ids[at - templatesHere.begin()];
                    printed = i < firstUnprinted;
                }
                detail.row(number, exam.code, int(line.units),
                           tq::money(amounts[l - inv.firstLine]), done, printed, printed ? 1 : 0,
                           done ? std::optional<QString>(technician) : std::nullopt,
                           done ? std::optional<QDate>(filled) : std::nullopt, id);
                if (waits)
                    for (int u = 0; u < line.units; ++u)
                        waiting.row(number, exam.code, exam.name, false);
            }
            for (std::size_t k = 0; k < templatesHere.size(); ++k)
                writeSheet(cell, number, int(k) + 1, templatesHere[k], ids[k], inv);
        }
        changeLog(withSheets, onTable);
    }

    // ---- orders -------------------------------------------------------

    // Quotations over the same years, priced as the invoices are. A quarter
    // still waits; the rest were closed within a month, most of them by the
    // invoice that billed them (that day's first).
    void orders()
    {
        Stmt order(m_db, "INSERT INTO orden (orden, fecha, faturado, cod_paciente, sub_total, total, "
                         "cod_doctor, valadicional, adicional, anulada, anulacion, quien_anulo, "
                         "factura) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        Stmt line(m_db, "INSERT INTO ordenDetalle (orden, cantidad, cod_descripcionexamen, precio, "
                        "subtotal) VALUES (?, ?, ?, ?, ?)");
        const qint64 days = kFirstDay.daysTo(kLastDay);
        const int n = m_sizes.orders;
        for (int k = 0; k < n; ++k) {
            QDate date = kFirstDay.addDays(days * k / std::max(1, n));
            if (date.dayOfWeek() == Qt::Sunday)
                date = date.addDays(-1);
            int patient = m_rng.skewed(m_sizes.patients, 1.3);
            for (int tries = 0; m_patients[patient].birth > date; ++tries)
                patient = tries < 50 ? m_rng.below(m_sizes.patients) : (patient + 1) % m_sizes.patients;
            const Patient& p = m_patients[patient];
            std::optional<int> doctor;
            if (m_sizes.doctors > 0 && m_rng.chance(0.4))
                doctor = 1 + m_rng.below(m_sizes.doctors);

            struct Priced { int exam; int units; double price; };
            std::vector<Priced> lines;
            const int count = m_rng.between(1, 10);
            double subTotal = 0;
            for (int l = 0; l < count; ++l) {
                int e = pickExam();
                for (int tries = 0; tries < 30
                                    && std::any_of(lines.begin(), lines.end(),
                                                   [e](const Priced& x) { return x.exam == e; });
                     ++tries)
                    e = pickExam();
                const int units = m_rng.chance(0.03) ? 2 : 1;
                double price = m_exams[e].price;
                if (p.insured && m_insurerPrice[p.insurer][e] > 0)
                    price = m_insurerPrice[p.insurer][e];
                lines.push_back({e, units, price});
                subTotal += price * units;
            }
            std::optional<QString> extra;
            double extraAmount = 0;
            if (m_rng.chance(0.08)) {
                extra = QStringLiteral("Descuento");
                extraAmount = cents(subTotal * 0.10);
            }
            const double total = subTotal - extraAmount;

            const bool pending = m_rng.chance(0.25);
            std::optional<QDate> closedOn;
            std::optional<QString> closedBy;
            std::optional<int> billedBy;
            if (!pending) {
                closedOn = std::min(kLastDay, date.addDays(m_rng.below(30)));
                closedBy = m_desk[m_rng.below(int(m_desk.size()))];
                if (m_rng.chance(0.7)) {
                    const auto first = std::lower_bound(
                        m_invoices.begin(), m_invoices.end(), *closedOn,
                        [](const PlannedInvoice& inv, const QDate& d) { return inv.date < d; });
                    if (first != m_invoices.end())
                        billedBy = int(first - m_invoices.begin()) + 1;
                }
            }
            const int number = k + 1;
            const QString faturado = m_desk[m_rng.below(int(m_desk.size()))];
            order.row(number, date, faturado, patient + 1, tq::money(subTotal), tq::money(total),
                      doctor, extra ? Written(tq::money(extraAmount)) : Written(0), extra,
                      !pending, closedOn, closedBy, billedBy);
            for (const Priced& l : lines)
                line.row(number, l.units, m_exams[l.exam].code, tq::money(l.price),
                         tq::money(l.price * l.units));
        }
    }

    // The corrections of the last month: a few a day, on sheets of the
    // invoices just before it. Only the log: the sheets stand as saved.
    void changeLog(int from, int to)
    {
        static const char* const templateNames[] = {"", "Formato en Blanco", "Hematologia",
                                                    "Uroanalisis", "Quimica Clinica",
                                                    "Parasitologia", "Formato en Blanco 2"};
        static const char* const reasons[] = {
            "El usuario modifico el formato de resultado por Error de Prueba",
            "Error de digitacion en el resultado",
            "El medico solicito repetir la prueba",
            "Se agrego comentario al resultado"};
        Stmt log(m_db, "INSERT INTO historialcambios (Factura, plantilla, usuario, fecha, "
                       "descripcion, cod_cambio, tecnico, momento, NumFormato, Cod_Plantilla) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        const QDate first(kLastDay.year(), kLastDay.month(), 1);
        const int changes = std::max(1, m_sizes.sheets / 160);
        int code = 0;
        for (int k = 0; k < changes && to > from; ++k) {
            const int i = from + m_rng.below(to - from);
            if (m_voided[i])
                continue;
            const std::vector<int> templatesHere = sheetTemplates(m_invoices[i]);
            if (templatesHere.empty())
                continue;
            const int sheet = m_rng.below(int(templatesHere.size()));
            const QDate day = std::max(m_invoices[i].date, first.addDays(m_rng.below(first.daysInMonth())));
            const QDateTime when(day, QTime(7 + m_rng.below(11), m_rng.below(60)));
            log.row(i + 1, S(templateNames[templatesHere[sheet]]), QStringLiteral("admin"), day,
                    S(m_rng.pick(reasons)), ++code,
                    m_technicians[m_rng.below(int(m_technicians.size()))], when, sheet + 1,
                    templatesHere[sheet]);
        }
    }

    // The cells of one saved sheet, as the fill-in screens store them.
    void writeSheet(Stmt& cell, int invoice, int numFormato, int plantilla, int id,
                    const PlannedInvoice& inv)
    {
        const std::optional<int> version = plantilla >= 2 && plantilla <= 4 ? std::optional<int>(1)
                                                                            : std::nullopt;
        auto put = [&](const QString& celda, const QString& valor) {
            cell.row(invoice, numFormato, plantilla, celda, valor, version, double(id));
        };
        auto number = [&](double lo, double hi, int decimals) {
            return QString::number(lo + (hi - lo) * m_rng.unit(), 'f', decimals);
        };
        switch (plantilla) {
        case 2: {
            // Red cells in the first column, white cells in the second.
            struct Reading {
                const char* celda;
                double lo, hi;
                int decimals;
            };
            const Reading readings[] = {
                {"B1", 4.0, 5.8, 2},   {"B2", 11.5, 17.0, 1},      {"B3", 35, 52, 0},
                {"B4", 80, 98, 0},     {"B5", 27, 33, 0},          {"B6", 32, 36, 0},
                {"B7", 150000, 420000, 0},
                {"E1", 4500, 12000, 0}, {"E2", 45, 75, 0},         {"E3", 20, 45, 0},
                {"E4", 2, 8, 0},       {"E5", 1, 4, 0},            {"E6", 0, 1, 0}};
            for (const Reading& r : readings)
                put(S(r.celda), number(r.lo, r.hi, r.decimals));
            put(QStringLiteral("W"),
                m_rng.chance(0.1) ? QStringLiteral("Muestra hemolizada levemente") : QString(""));
            break;
        }
        case 3: {
            const char* const physical[] = {"Amarillo", "Claro", "1.020", "6.0"};
            for (int r = 0; r < 4; ++r)
                put(QStringLiteral("B%1").arg(r + 1), S(physical[r]));
            for (int r = 9; r <= 15; ++r)
                put(QStringLiteral("B%1").arg(r),
                    m_rng.chance(0.9) ? QStringLiteral("Negativo") : QStringLiteral("Positivo +"));
            put(QStringLiteral("D1"),
                QStringLiteral("%1-%2").arg(m_rng.below(4)).arg(2 + m_rng.below(6)));
            put(QStringLiteral("D2"), QStringLiteral("0-1"));
            put(QStringLiteral("D3"), QStringLiteral("Escasas"));
            put(QStringLiteral("D4"),
                m_rng.chance(0.3) ? QStringLiteral("Moderadas") : QStringLiteral("Escasas"));
            put(QStringLiteral("W"), QString(""));
            break;
        }
        case 4: {
            int row = 0;
            for (int l = inv.firstLine; l < inv.firstLine + inv.lineCount && row < 17; ++l)
                if (m_exams[m_lines[l].exam].plantilla == 4)
                    put(QStringLiteral("B%1").arg(++row), number(60, 220, 1));
            put(QStringLiteral("W"),
                m_rng.chance(0.1) ? QStringLiteral("Paciente no estaba en ayunas") : QString(""));
            break;
        }
        case 5: {
            const char* const stool[] = {"Cafe", "Caracteristico", "Pastosa", "No se observa",
                                         "Negativo", ""};
            for (int k = 0; k < 5; ++k)
                put(QString::number(k + 1), S(stool[k]));
            put(QStringLiteral("7"), m_rng.chance(0.2)
                                         ? QStringLiteral("Quistes de Entamoeba histolytica")
                                         : QStringLiteral("No se observan"));
            break;
        }
        default:
            put(QStringLiteral("1"),
                QStringLiteral(
                    "RESULTADO\n\nMuestra: suero\nMetodo: inmunoensayo\n\nResultado: %1\n"
                    "Valor de referencia: segun edad y sexo del paciente.\n\n"
                    "Validado por el laboratorio.")
                    .arg(m_rng.chance(0.8) ? QStringLiteral("No reactivo")
                                           : QStringLiteral("Reactivo")));
            break;
        }
    }

    Connection* m_db;
    Sizes m_sizes;
    Rng m_rng;
    std::vector<ExamType> m_types;
    std::vector<std::vector<int>> m_examsOfType;
    std::vector<Exam> m_exams;
    std::vector<std::vector<double>> m_insurerPrice;   // [insurer][exam]; 0 where not covered
    std::vector<int> m_doctorRate;
    std::vector<Patient> m_patients;
    std::vector<QString> m_desk;
    std::vector<QString> m_technicians;
    std::vector<double> m_supplyPrice;
    std::vector<std::vector<int>> m_offeredBy;   // supplies of each supplier
    std::vector<PlannedInvoice> m_invoices;
    std::vector<Line> m_lines;
    std::vector<bool> m_voided;
};

// The store's folder carries the fill's version and the tables and indexes
// that the program makes in a new store, so that a change to either (a new
// index among them) makes a new store.
QString storeKey()
{
    QTemporaryDir probe;
    if (!probe.isValid())
        throw StoreError("cannot make a temporary folder");
    const QString path = probe.filePath(QStringLiteral("lab.db"));
    tq::amb1().openStore(path);
    tq::amb1().closeStore();
    Connection* db = openBare(StoreAt::file(path), true);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    {
        Stmt schema(db, "SELECT type, name, sql FROM sqlite_master ORDER BY type, name");
        while (schema.next())
            for (int c = 0; c < 3; ++c)
                hash.addData(schema.columnText(c).toUtf8());
    }
    closeBare(db);
    return QStringLiteral("%1-%2")
        .arg(kFillVersion)
        .arg(QString::fromLatin1(hash.result().toHex().left(8)));
}

}  // namespace

Sizes Sizes::small()
{
    Sizes s;
    s.patients = 1000;
    s.doctors = 8;
    s.employees = 5;
    s.invoices = 2000;
    s.lines = 10000;
    s.waiting = 100;
    s.sheets = 500;
    s.supplies = 60;
    s.suppliers = 5;
    s.purchases = 40;
    s.orders = 200;
    return s;
}

int probeInvoice(const Sizes& sizes) { return std::max(1, sizes.invoices / 2); }

QDate invoiceDay(Connection* db, int invoice)
{
    Stmt day(db, "SELECT fecha FROM Factura WHERE factura = ?");
    day.bind(1, invoice);
    QDate date;
    while (day.next())
        date = QDate::fromString(day.columnText(0), Qt::ISODate);
    return date;
}

void fillStore(const QString& path, const Sizes& sizes)
{
    Connection* db = openBare(StoreAt::file(path), false);
    try {
        // Speed only for the fill: a store cut short is thrown away anyway.
        execBare(db, "PRAGMA synchronous = OFF");
        execBare(db, "PRAGMA journal_mode = MEMORY");
        execBare(db, "PRAGMA cache_size = -400000");
        execBare(db, "BEGIN");
        Filler(db, sizes).run();
        execBare(db, "COMMIT");
    } catch (...) {
        sqlite3_exec(db->file(), "ROLLBACK", nullptr, nullptr, nullptr);
        closeBare(db);
        throw;
    }
    closeBare(db);
}

LargeStore largeStore(const QString& benchDir, bool rebuild)
{
    LargeStore s;
    s.key = storeKey();
    s.folder = QDir(benchDir).filePath(QStringLiteral("almacen-") + s.key);
    s.path = QDir(s.folder).filePath(QStringLiteral("lab.db"));
    if (rebuild || !QFileInfo::exists(s.path)) {
        // Stores of earlier fills or schemas, and a half-made one, go.
        const QStringList old = QDir(benchDir).entryList({QStringLiteral("almacen-*")}, QDir::Dirs);
        for (const QString& o : old)
            QDir(QDir(benchDir).filePath(o)).removeRecursively();
        if (!QDir().mkpath(s.folder))
            throw StoreError(QStringLiteral("cannot create %1").arg(s.folder).toStdString());
        // Made under another name and renamed when complete: lab.db exists
        // only once the whole fill is in it.
        const QString making = s.path + QStringLiteral(".llenando");
        QElapsedTimer clock;
        clock.start();
        tq::amb1().openStore(making);
        tq::amb1().closeStore();
        fillStore(making, Sizes{});
        if (!QFile::rename(making, s.path))
            throw StoreError(QStringLiteral("cannot rename %1").arg(making).toStdString());
        s.fillSeconds = clock.elapsed() / 1000.0;
    }
    s.bytes = QFileInfo(s.path).size();
    return s;
}

}  // namespace bench
