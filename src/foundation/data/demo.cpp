#include "foundation/data/demo.h"

#include "foundation/data/schema.h"

#include "foundation/base/apperror.h"
#include "foundation/base/passwords.h"
#include "foundation/base/values.h"

#include <QDate>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <cmath>
#include <cstdint>

namespace tq {

namespace {

const QString kFailure = QStringLiteral("No se pudieron cargar los datos de demostración.");

class Writer {
public:
    explicit Writer(const QSqlDatabase& db) : m_db(db) {}

    // Runs one statement with bound values; returns the key the store gave.
    QVariant run(const QString& sql, const QVariantList& binds = {})
    {
        return schema::insertedByDriver(schema::run(m_db, sql, binds, kFailure));
    }

    QVariant scalar(const QString& sql, const QVariantList& binds = {})
    {
        QSqlQuery q = schema::run(m_db, sql, binds, kFailure);
        return q.next() ? q.value(0) : QVariant();
    }

    // Key of a row just added under a store counter.
    std::int32_t counterKey(const QVariant& fromDriver, const QString& table,
                            const QString& column)
    {
        if (fromDriver.isValid() && !fromDriver.isNull())
            return toInt32(fromDriver);
        return toInt32(scalar(QStringLiteral("SELECT MAX(%1) FROM %2").arg(column, table)));
    }

    std::int32_t nextCode(const QString& table, const QString& column)
    {
        return toInt32(
            scalar(QStringLiteral("SELECT COALESCE(MAX(%1), 0) + 1 FROM %2").arg(column, table)));
    }

private:
    QSqlDatabase m_db;
};

QString S(const char* text) { return QString::fromUtf8(text); }

// Prices are quoted in whole lempiras, to the nearest five.
double roundToFive(double amount) { return std::round(amount / 5.0) * 5.0; }

struct Insurer {
    const char* empresa;
    const char* contacto;
    const char* tel;
    const char* banco;
    const char* cuenta;
    double factor;   // its prices against the list price
};

const Insurer kInsurers[] = {
    {"Seguros Atlantida", "Lic. Marta Rivera", "2216-0000", "Banco Atlantida", "1100-234567-8", 0.90},
    {"Pan American Life", "Ing. Roberto Zuniga", "2216-8100", "BAC Credomatic", "730-112233-4", 0.85},
    {"MAPFRE Honduras", "Lic. Claudia Mendoza", "2231-1010", "Banco Ficohsa", "200-445566-1", 0.95},
    {"Seguros del Pais", "Lic. Jorge Aguilar", "2238-5060", "Banpais", "015-778899-0", 0.80},
};

struct Doctor {
    const char* nombre;
    const char* apellido;
    const char* dir;
    const char* tel;
    const char* correo;
    double porsentaje;
};

const Doctor kDoctors[] = {
    {"Ricardo Antonio", "Aguilar Fonseca", "Hospital Viera, Tegucigalpa", "2237-1122",
     "raguilar@medicoshn.com", 10},
    {"Claudia Maria", "Bustillo Rivera", "Clinica Santa Fe, Col. Palmira, Tegucigalpa", "2231-4455",
     "cbustillo@medicoshn.com", 15},
    {"Jorge Alberto", "Fiallos Matute", "Centro Medico Hondureño, Tegucigalpa", "2232-7788", "", 5},
    {"Patricia Elena", "Zelaya Mendoza", "Clinica Pediatrica Infantil, Col. Kennedy", "2239-9900",
     "pzelaya@pediatras.hn", 12},
    {"Hector Manuel", "Rosales Calix", "Hospital San Felipe, Tegucigalpa", "2236-3344", "", 0},
    {"Ligia Marisol", "Ortega Varela", "Clinica La Esperanza, Comayagüela", "2225-6611",
     "lortega@medicoshn.com", 8},
};

const char* const kTypes[] = {"Hematologia", "Quimica Clinica", "Uroanalisis",
                              "Parasitologia", "Inmunologia",   "Referidos"};

struct Exam {
    int type;   // index in kTypes
    const char* examen;
    double precio;
    const char* entrega;
    bool llena;
};

const Exam kExams[] = {
    {0, "Hemograma Completo", 150, "2 horas", true},
    {0, "Hemoglobina y Hematocrito", 80, "1 hora", true},
    {0, "Velocidad de Eritrosedimentacion", 80, "2 horas", true},
    {0, "Tipo y Rh", 80, "1 hora", false},
    {0, "Recuento de Plaquetas", 80, "2 horas", true},
    {0, "Tiempo de Protrombina", 150, "Mismo dia", false},
    {1, "Glucosa en Ayunas", 60, "1 hora", true},
    {1, "Glucosa Postprandial", 60, "1 hora", true},
    {1, "Hemoglobina Glicosilada", 350, "Mismo dia", true},
    {1, "Perfil Lipidico", 350, "Mismo dia", true},
    {1, "Colesterol Total", 80, "2 horas", true},
    {1, "Trigliceridos", 80, "2 horas", true},
    {1, "Creatinina", 80, "2 horas", true},
    {1, "Acido Urico", 80, "2 horas", true},
    {1, "Nitrogeno Ureico", 80, "2 horas", true},
    {1, "Transaminasas TGO y TGP", 200, "Mismo dia", true},
    {2, "Examen General de Orina", 60, "1 hora", true},
    {2, "Prueba de Embarazo en Orina", 100, "30 minutos", false},
    {3, "Examen General de Heces", 60, "1 hora", true},
    {3, "Sangre Oculta en Heces", 150, "2 horas", true},
    {4, "VDRL", 100, "Mismo dia", true},
    {4, "Antigenos Febriles", 200, "Mismo dia", true},
    {4, "Proteina C Reactiva", 150, "Mismo dia", true},
    {4, "Factor Reumatoideo", 150, "Mismo dia", true},
    {4, "Prueba de VIH", 250, "Mismo dia", true},
    {5, "r. Cultivo de Orina", 450, "3 dias", false},
    {5, "r. Perfil Tiroideo", 900, "4 dias", false},
    {5, "r. Antigeno Prostatico Especifico", 550, "3 dias", false},
};

struct Patient {
    const char* nombre;
    const char* apellido;
    bool mujer;
    int y, m, d;
    const char* tel;
    const char* cel;
    const char* direccion;
    const char* correo;
    int seguro;   // 0 none, else 1..4 of kInsurers
    bool adulto;
};

const Patient kPatients[] = {
    {"Jose Luis", "Martinez Flores", false, 1985, 3, 14, "2232-1456", "9876-2301",
     "Col. Kennedy, Tegucigalpa", "jlmartinez@correo.hn", 1, false},
    {"Maria Jose", "Hernandez Castillo", true, 1990, 7, 22, "", "3345-1290",
     "Col. Miraflores, Tegucigalpa", "", 0, false},
    {"Carlos Roberto", "Mejia Zelaya", false, 1958, 11, 2, "2236-7781", "9912-4403",
     "Barrio La Granja, Comayagüela", "", 0, false},
    {"Ana Lucia", "Rodriguez Paz", true, 2018, 5, 9, "2239-1102", "9654-7720",
     "Res. Las Hadas, Tegucigalpa", "", 0, false},
    {"Juan Pablo", "Lopez Aguilar", false, 2020, 1, 30, "", "3190-8844",
     "Col. Las Colinas, Tegucigalpa", "", 2, false},
    {"Rosa Elena", "Cruz Banegas", true, 1949, 8, 17, "2225-4410", "",
     "Barrio Abajo, Tegucigalpa", "", 0, false},
    {"Luis Fernando", "Ramirez Ordoñez", false, 1972, 12, 5, "2231-9090", "9981-3345",
     "Col. Palmira, Tegucigalpa", "lframirez@empresa.hn", 3, false},
    {"Karla Patricia", "Suazo Medina", true, 1995, 2, 28, "", "3312-6789",
     "Col. Alameda, Tegucigalpa", "karla.suazo@correo.hn", 0, false},
    {"Daniel Alejandro", "Reyes Pineda", false, 2016, 9, 12, "2233-5021", "9745-1188",
     "Res. Honduras, Tegucigalpa", "", 0, false},
    {"Gloria Marina", "Funez Rivera", true, 1955, 4, 3, "2232-8870", "9870-6612",
     "Col. El Hogar, Tegucigalpa", "", 4, false},
    {"Kevin Josue", "Maradiaga Sanchez", false, 2001, 6, 19, "", "3256-4401",
     "Col. San Angel, Tegucigalpa", "kevin.maradiaga@correo.hn", 0, false},
    {"Sofia Isabel", "Castro Velasquez", true, 2022, 3, 8, "2230-6615", "9433-2270",
     "Col. Kennedy, Tegucigalpa", "", 0, false},
    {"Marco Antonio", "Portillo Giron", false, 1963, 10, 25, "2237-4489", "9902-1176",
     "Barrio El Centro, Comayagua", "", 0, false},
    {"Dania Yolanda", "Amador Murillo", true, 1988, 1, 11, "", "9688-3021",
     "Col. Trejo, San Pedro Sula", "dania.amador@empresa.hn", 1, false},
    {"Angel Gabriel", "Chavez Euceda", false, 2019, 11, 27, "2234-7702", "3378-9015",
     "Col. Miraflores, Tegucigalpa", "", 0, false},
    {"Lesly Carolina", "Moncada Alvarado", true, 1979, 9, 30, "2231-0098", "9815-4432",
     "Res. Las Hadas, Tegucigalpa", "", 0, false},
    {"Francisco Javier", "Padilla Nuñez", false, 1944, 2, 14, "2225-3316", "",
     "Barrio Guamilito, San Pedro Sula", "", 0, false},
    // A teenager whose doctor asks for adult reference values.
    {"Nancy Waleska", "Turcios Lagos", true, 2013, 12, 24, "", "3390-1257",
     "Col. Palmira, Tegucigalpa", "", 0, true},
    {"Oscar Armando", "Bonilla Romero", false, 1993, 5, 6, "", "9967-2214",
     "Col. Alameda, Tegucigalpa", "oscar.bonilla@empresa.hn", 2, false},
    {"Wendy Melissa", "Gutierrez Canales", true, 2017, 7, 4, "2238-0041", "9720-5563",
     "Col. El Hogar, Tegucigalpa", "", 0, false},
};

struct Employee {
    const char* nombre;
    const char* apellido;
    const char* direccion;
    const char* tel;
    const char* cel;
    int y, m, d;   // hiring date
    const char* usuario;
};

const Employee kEmployees[] = {
    {"Maria Fernanda", "Lopez Reyes", "Col. Kennedy, Tegucigalpa", "2230-1144", "9871-2233", 2019, 3,
     1, "mlopez"},
    {"Carlos Alberto", "Mejia Castro", "Col. Villa Olimpica, Tegucigalpa", "", "3344-5566", 2021, 8,
     16, "cmejia"},
};

// A parameter of a grid template with its normal values by population:
// man, woman, child, any (an empty range gives no row).
struct Parameter {
    const char* parametro;
    const char* unidad;
    const char* hombre;
    const char* mujer;
    const char* nino;
    const char* unico;
};

const char* const kBreak = "_____SALTO DE LINEA_____";

// Hematology: "Hematimetría" fills the first column (positions 0 to 10),
// the white cell count the second (11 onward).
const Parameter kHematologia[] = {
    {"Globulos Rojos", "millones/mm3", "4.5 - 5.9", "4.0 - 5.2", "", ""},
    {"Hemoglobina", "g/dL", "13.5 - 17.5", "12.0 - 15.5", "", ""},
    {"Hematocrito", "%", "41 - 53", "36 - 46", "", ""},
    {"VCM", "fL", "", "", "", "80 - 100"},
    {"HCM", "pg", "", "", "", "27 - 33"},
    {"CHCM", "g/dL", "", "", "", "32 - 36"},
    {"Plaquetas", "/mm3", "", "", "", "150000 - 450000"},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {"Globulos Blancos", "/mm3", "", "", "5000 - 13000", "4500 - 11000"},
    {"Neutrofilos", "%", "", "", "30 - 60", "50 - 70"},
    {"Linfocitos", "%", "", "", "30 - 60", "20 - 40"},
    {"Monocitos", "%", "", "", "", "2 - 8"},
    {"Eosinofilos", "%", "", "", "", "1 - 4"},
    {"Basofilos", "%", "", "", "", "0 - 1"},
};

// Urinalysis: physical (0-6), chemical (7-15), microscope (16 onward). The
// unit stands in the value cell as the proposed result.
const Parameter kUroanalisis[] = {
    {"Color", "Amarillo", "", "", "", ""},
    {"Aspecto", "Claro", "", "", "", ""},
    {"Densidad", "", "", "", "", ""},
    {"pH", "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {"Proteinas", "Negativo", "", "", "", ""},
    {"Glucosa en Orina", "Negativo", "", "", "", ""},
    {"Cetonas", "Negativo", "", "", "", ""},
    {"Bilirrubina", "Negativo", "", "", "", ""},
    {"Sangre", "Negativo", "", "", "", ""},
    {"Nitritos", "Negativo", "", "", "", ""},
    {"Urobilinogeno", "Normal", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {kBreak, "", "", "", "", ""},
    {"Leucocitos por Campo", "", "", "", "", ""},
    {"Eritrocitos por Campo", "", "", "", "", ""},
    {"Celulas Epiteliales", "", "", "", "", ""},
    {"Bacterias", "", "", "", "", ""},
    {"Cristales", "", "", "", "", ""},
    {"Cilindros", "", "", "", "", ""},
    {"Levaduras", "", "", "", "", ""},
};

const Parameter kQuimica[] = {
    {"Glucosa", "mg/dL", "", "", "", "70 - 110"},
    {"Colesterol Total", "mg/dL", "", "", "", "menor de 200"},
    {"Trigliceridos", "mg/dL", "", "", "", "menor de 150"},
    {"Colesterol HDL", "mg/dL", "mayor de 40", "mayor de 50", "", ""},
    {"Colesterol LDL", "mg/dL", "", "", "", "menor de 130"},
    {"Creatinina", "mg/dL", "0.7 - 1.3", "0.6 - 1.1", "", ""},
    {"Acido Urico", "mg/dL", "3.4 - 7.0", "2.4 - 6.0", "", ""},
    {"Nitrogeno Ureico", "mg/dL", "", "", "5 - 18", "7 - 20"},
    {"TGO", "U/L", "", "", "", "hasta 40"},
    {"TGP", "U/L", "", "", "", "hasta 41"},
};

// Adds the parameters of one template that has no version yet, each name
// once in the catalogue, with its normal values.
template <std::size_t N>
void addTemplate(Writer& w, QHash<QString, std::int32_t>& codes, int plantilla,
                 const Parameter (&params)[N])
{
    if (w.scalar(QStringLiteral("SELECT COUNT(*) FROM PlantillaParametro WHERE Cod_Plantilla = ?"),
                 {plantilla})
            .toInt()
        > 0)
        return;
    int orden = 0;
    for (const Parameter& p : params) {
        const QString name = S(p.parametro);
        if (!codes.contains(name)) {
            const QVariant existing = w.scalar(
                QStringLiteral("SELECT cod_parametro FROM parametros WHERE parametro = ?"), {name});
            if (existing.isValid() && !existing.isNull()) {
                codes.insert(name, toInt32(existing));
            } else {
                const std::int32_t code = w.nextCode(QStringLiteral("parametros"),
                                            QStringLiteral("cod_parametro"));
                const QString unidad = S(p.unidad);
                w.run(QStringLiteral("INSERT INTO parametros (cod_parametro, parametro, unidad) "
                                     "VALUES (?, ?, ?)"),
                      {code, name, unidad});
                const char* const ranges[] = {p.hombre, p.mujer, p.nino, p.unico};
                for (int sexo = 1; sexo <= 4; ++sexo) {
                    const QString range = S(ranges[sexo - 1]);
                    if (range.isEmpty())
                        continue;
                    // As the parameter screen stores it: the range, a blank, the unit.
                    w.run(QStringLiteral("INSERT INTO valparametros (cod_parametro, cod_sexo, "
                                         "valor_normal) VALUES (?, ?, ?)"),
                          {code, sexo, range + QLatin1Char(' ') + unidad});
                }
                codes.insert(name, code);
            }
        }
        w.run(QStringLiteral("INSERT INTO PlantillaParametro (Cod_Plantilla, cod_Parametro, "
                             "version, orden) VALUES (?, ?, ?, ?)"),
              {plantilla, codes.value(name), 1, orden++});
    }
}

void fill(Writer& w)
{
    // The laboratory's own data, as the settings screen would keep it.
    const QVariantList lab = {S("Laboratorio Clinico San Rafael"),
                              S("Resultados confiables, atencion con calidez"),
                              S("08019012345678"),
                              S("Col. Palmira, Ave. Republica de Chile, Tegucigalpa, M.D.C."),
                              S("2232-4578 / 9988-1122"),
                              S("2232-4579"),
                              S("info@labsanrafael.hn")};
    if (w.scalar(QStringLiteral("SELECT COUNT(*) FROM datos")).toInt() == 0)
        w.run(QStringLiteral("INSERT INTO datos (nombre_lab, eslogan_lab, rtn_lab, direccion_lab, "
                             "telefono_lab, fax_lab, correo_lab) VALUES (?, ?, ?, ?, ?, ?, ?)"),
              lab);
    else
        w.run(QStringLiteral("UPDATE datos SET nombre_lab = ?, eslogan_lab = ?, rtn_lab = ?, "
                             "direccion_lab = ?, telefono_lab = ?, fax_lab = ?, correo_lab = ?"),
              lab);

    // Exam types and exams.
    QList<std::int32_t> typeCodes;
    for (const char* t : kTypes) {
        const QVariant id =
            w.run(QStringLiteral("INSERT INTO TipoExamen (tipo_examen) VALUES (?)"), {S(t)});
        typeCodes << w.counterKey(id, QStringLiteral("TipoExamen"),
                                  QStringLiteral("cod_tipo_examen"));
    }
    QList<std::int32_t> examCodes;
    for (const Exam& e : kExams) {
        // "Precio Otros" is the list offered to clinics and companies that send patients.
        const double otros = roundToFive(e.precio * 0.9);
        const QVariant id = w.run(
            QStringLiteral("INSERT INTO Examenes (examen, cod_tipo_examen, precio, precioo, valor, "
                           "tiempo_entrega, llenaresultado) VALUES (?, ?, ?, ?, ?, ?, ?)"),
            {S(e.examen), typeCodes.at(e.type), money(e.precio), money(otros), money(0.0),
             S(e.entrega), e.llena});
        examCodes << w.counterKey(id, QStringLiteral("Examenes"),
                                  QStringLiteral("cod_descripcionexamen"));
    }

    // Insurers, each with its price list for most exams.
    QList<std::int32_t> insurerCodes;
    int k = 0;
    for (const Insurer& s : kInsurers) {
        const std::int32_t code =
            w.nextCode(QStringLiteral("seguros"), QStringLiteral("Cod_Seguro"));
        w.run(QStringLiteral("INSERT INTO seguros (Cod_Seguro, Empresa, Contacto, Tel, Banco, "
                             "Cuenta) VALUES (?, ?, ?, ?, ?, ?)"),
              {code, S(s.empresa), S(s.contacto), S(s.tel), S(s.banco), S(s.cuenta)});
        insurerCodes << code;
        ++k;
        for (int i = 0; i < int(std::size(kExams)); ++i) {
            if ((i + k) % 5 == 0)   // not every insurer covers every exam
                continue;
            w.run(QStringLiteral("INSERT INTO RelSeguroPrecios (cod_seguro, Cod_descripcionexamen, "
                                 "precio) VALUES (?, ?, ?)"),
                  {code, examCodes.at(i), money(roundToFive(kExams[i].precio * s.factor))});
        }
    }

    for (const Doctor& d : kDoctors)
        w.run(QStringLiteral("INSERT INTO Doctores (Nombre_doctor, Apellido_doctor, dir_doctor, "
                             "tel_doctor, correo_doctor, porsentaje) VALUES (?, ?, ?, ?, ?, ?)"),
              {S(d.nombre), S(d.apellido), S(d.dir), S(d.tel), S(d.correo), d.porsentaje});

    for (const Patient& p : kPatients) {
        const bool insured = p.seguro > 0;
        w.run(QStringLiteral("INSERT INTO Pacientes (nombre_paciente, apellido_paciente, sexo, "
                             "fecha_nacimiento, tel_paciente, cel_paciente, direccion_paciente, "
                             "correo, fax_cliente, asegurado, eadulto, Cod_seguro) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
              {S(p.nombre), S(p.apellido),
               p.mujer ? QStringLiteral("Femenino") : QStringLiteral("Masculino"),
               QDate(p.y, p.m, p.d), S(p.tel), S(p.cel), S(p.direccion), S(p.correo), QString(),
               insured, p.adulto, insured ? insurerCodes.at(p.seguro - 1) : 0});
    }

    // Front-desk staff: limited users whose first password is their sign-on
    // name, stored hashed as the employee screen stores it.
    for (const Employee& e : kEmployees) {
        const QString usuario = S(e.usuario);
        if (w.scalar(QStringLiteral("SELECT COUNT(*) FROM Empleados WHERE usuario = ?"), {usuario})
                .toInt()
            > 0)
            continue;
        const QVariant id = w.run(
            QStringLiteral("INSERT INTO Empleados (nombre_empleado, apellido_empleado, "
                           "direccion_empleado, tel_empleado, cel_empleado, fecha_nacimiento, rol, "
                           "usuario, Password) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            {S(e.nombre), S(e.apellido), S(e.direccion), S(e.tel), S(e.cel), QDate(e.y, e.m, e.d),
             2, usuario, hashPassword(usuario)});
        const std::int32_t code =
            w.counterKey(id, QStringLiteral("Empleados"), QStringLiteral("cod_empleado"));
        for (int modulo = 1; modulo <= 3; ++modulo)
            w.run(QStringLiteral("INSERT INTO usuariosmodulos (cod_empleado, cod_modulo) "
                                 "VALUES (?, ?)"),
                  {code, modulo});
    }

    // Stored page texts under each of the six menus of the blank sheet.
    struct StoredText {
        int menu;
        const char* name;
        const char* text;
    };
    static const StoredText kStoredTexts[] = {
        {1, "Examen General de Heces",
         "EXAMEN GENERAL DE HECES\n\nConsistencia:\nColor:\nMoco:\nSangre macroscopica:\n\n"
         "Examen microscopico:\nLeucocitos:\nEritrocitos:\nParasitos:"},
        {2, "Prueba de Embarazo en Sangre",
         "PRUEBA DE EMBARAZO EN SANGRE (HCG CUALITATIVA)\n\nResultado:\n\nMetodo: "
         "inmunocromatografia"},
        {2, "VDRL", "V.D.R.L.\n\nResultado:\nDiluciones:"},
        {3, "Perfil Lipidico",
         "PERFIL LIPIDICO\n\nColesterol total:        mg/dL\nTrigliceridos:        mg/dL\n"
         "HDL:        mg/dL\nLDL:        mg/dL"},
        {4, "Factor Reumatoideo", "FACTOR REUMATOIDEO (LATEX)\n\nResultado:\nTitulo:"},
        {5, "Frotis de Sangre Periferica",
         "FROTIS DE SANGRE PERIFERICA\n\nSerie roja:\nSerie blanca:\nPlaquetas:"},
        {6, "Constancia de Salud",
         "CONSTANCIA\n\nSe hace constar que el (la) paciente se realizo los examenes de "
         "laboratorio indicados, con resultados dentro de los limites normales."},
    };
    if (w.scalar(QStringLiteral("SELECT COUNT(*) FROM submenusformatoblanco")).toInt() == 0)
        for (const StoredText& t : kStoredTexts)
            w.run(QStringLiteral("INSERT INTO submenusformatoblanco (codigo_formatoblanco, "
                                 "submenu, valorsubmenu) VALUES (?, ?, ?)"),
                  {t.menu, S(t.name), S(t.text)});

    // Parameters, normal values and the first version of the grid templates.
    QHash<QString, std::int32_t> codes;
    addTemplate(w, codes, 2, kHematologia);
    addTemplate(w, codes, 3, kUroanalisis);
    addTemplate(w, codes, 4, kQuimica);
}

}  // namespace

void fillDemo(const QSqlDatabase& conn)
{
    QSqlDatabase db = conn;
    if (!db.isOpen())
        throw DbError(kFailure, QStringLiteral("la conexión no está abierta"));
    Writer w(db);
    const int patients = w.scalar(QStringLiteral("SELECT COUNT(*) FROM Pacientes")).toInt();
    const int exams = w.scalar(QStringLiteral("SELECT COUNT(*) FROM Examenes")).toInt();
    if (patients > 0 || exams > 0)
        throw AppError(QStringLiteral(
            "La base de datos ya tiene pacientes o exámenes: los datos de demostración solo se "
            "cargan en una base de datos nueva, para no mezclarlos con datos reales."));

    schema::inTransaction(db, kFailure, [&] {
        fill(w);
        schema::syncCounters(db);   // codes given here are not given again
    });
}

}  // namespace tq
