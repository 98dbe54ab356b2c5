#!/usr/bin/env python3
"""Mutation check of the test suite (make mutantes).

Copies the source tree (the working tree, or one revision with --desde) into
build/mutantes/arbol and builds it in build/mutantes/build, apart from every
other build. Then, for each mutant of mutantes.json (a one-token slip in code
where a slip costs most), it applies the slip, rebuilds the core library and
runs the tests that cover that code; a test that fails, crashes or hangs kills
the mutant. The tree is put back after every mutant.

A mutant in mutantes.json: "id"; "file", from the tree's root; "find", an exact
snippet that stands once in that file, and "replace", what it becomes;
"description"; "tests", test programs run in that order, each optionally
followed by the QtTest functions to run ("test_invoice totalsAndExtras"). The
first test that fails kills the mutant and the rest are not run.

It measures: it exits 0 whatever survives, and 2 only when it can't measure
(the tree doesn't build, a test fails before any mutant, another run is busy).
"""

import argparse
import fcntl
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutantes"
TREE = WORK / "arbol"
BUILD = WORK / "build"
LOGS = WORK / "registros"
REPORT = WORK / "informe.txt"
MUTANTS = Path(__file__).with_name("mutantes.json")

# The core library is one shared library; test programs are not relinked when
# it changes (CMAKE_LINK_DEPENDS_NO_SHARED), so a mutant costs one compile and
# one link of the library.
CORE = "tarvenquil_core"


class Stop(Exception):
    """The run can't measure anything: say why and end."""


def say(line, report=None):
    print(line, flush=True)
    if report is not None:
        report.write(line + "\n")
        report.flush()


def plural(n, one, many):
    return f"{n} {one if n == 1 else many}"


def minutes(seconds):
    seconds = int(round(seconds))
    return f"{seconds // 60} min {seconds % 60:02d} s" if seconds >= 60 else f"{seconds} s"


# ---------------------------------------------------------------- the tree

def working_tree_files():
    """Tracked and untracked files of the working tree (not the ignored ones)."""
    out = subprocess.run(
        ["git", "-C", str(ROOT), "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        check=True, capture_output=True).stdout.decode()
    files = {}
    for rel in out.split("\0"):
        if rel and (ROOT / rel).is_file():
            files[rel] = ROOT / rel
    return files


def revision_files(rev, scratch):
    """The files of one revision, unpacked through git archive into `scratch`."""
    try:
        sha = subprocess.run(["git", "-C", str(ROOT), "rev-parse", "--verify", rev + "^{commit}"],
                             check=True, capture_output=True, text=True).stdout.strip()
    except subprocess.CalledProcessError:
        raise Stop(f"La revisión «{rev}» no existe en el repositorio.")
    archive = subprocess.Popen(["git", "-C", str(ROOT), "archive", "--format=tar", sha],
                               stdout=subprocess.PIPE)
    subprocess.run(["tar", "-x", "-C", str(scratch)], stdin=archive.stdout, check=True)
    archive.stdout.close()
    if archive.wait() != 0:
        raise Stop(f"No se pudo extraer la revisión «{rev}» con git archive.")
    files = {}
    for path in scratch.rglob("*"):
        if path.is_file():
            files[str(path.relative_to(scratch))] = path
    return files, sha


def sync_tree(files):
    """Makes TREE hold exactly `files`. A file whose content is unchanged keeps
    its time stamp, so the build only redoes what differs; a changed one is
    written with a new time stamp (never the source's, which may be older than
    an object built from a mutant)."""
    TREE.mkdir(parents=True, exist_ok=True)
    for rel, src in files.items():
        dst = TREE / rel
        data = src.read_bytes()
        if dst.is_file() and dst.read_bytes() == data:
            continue
        dst.parent.mkdir(parents=True, exist_ok=True)
        if dst.is_symlink() or dst.is_dir():
            shutil.rmtree(dst) if dst.is_dir() else dst.unlink()
        dst.write_bytes(data)
        shutil.copymode(src, dst)
    for path in sorted(TREE.rglob("*"), reverse=True):
        rel = str(path.relative_to(TREE))
        if path.is_file() and rel not in files:
            path.unlink()
        elif path.is_dir() and not any(path.iterdir()):
            path.rmdir()


# ---------------------------------------------------------------- building

def build_env():
    env = dict(os.environ)
    env["CCACHE_NOHASHDIR"] = "1"
    env["CCACHE_BASEDIR"] = str(TREE)
    return env


def configure():
    cmd = ["cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja",
           "-DCMAKE_BUILD_TYPE=", "-DCMAKE_CXX_FLAGS=",
           "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
           "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
    done = subprocess.run(cmd, env=build_env(), capture_output=True)
    (LOGS / "configurar.txt").write_bytes(done.stdout + done.stderr)
    if done.returncode != 0:
        raise Stop("No se pudo configurar la compilación en build/mutantes/build; "
                   "vea build/mutantes/registros/configurar.txt.")


def build(targets, jobs, log):
    cmd = ["cmake", "--build", str(BUILD), "-j", str(jobs), "--target", *targets]
    with open(log, "w") as out:   # written as it goes: a long first build can be followed
        return subprocess.run(cmd, env=build_env(), stdout=out, stderr=subprocess.STDOUT).returncode == 0


# ---------------------------------------------------------------- tests

class Test:
    """One test program, optionally limited to some of its functions."""

    def __init__(self, text):
        parts = text.split()
        self.program = parts[0]
        self.functions = parts[1:]
        self.text = " ".join(parts)
        self.baseline = None   # seconds, unmutated


def test_env():
    env = dict(os.environ)
    env["QT_QPA_PLATFORM"] = "offscreen"
    env.pop("TQ_TEST_SERVER", None)   # always the embedded store
    return env


def run_test(test, timeout, log):
    """'ok', 'falla' (failed or crashed) or 'colgada' (hung), and the seconds."""
    program = BUILD / "tests" / test.program
    start = time.monotonic()
    with open(log, "w") as out:
        proc = subprocess.Popen([str(program), *test.functions], cwd=BUILD, env=test_env(),
                                stdout=out, stderr=subprocess.STDOUT, start_new_session=True)
        try:
            code = proc.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            os.killpg(proc.pid, signal.SIGKILL)
            proc.wait()
            return "colgada", time.monotonic() - start
    return ("ok" if code == 0 else "falla"), time.monotonic() - start


def check_functions(test, report):
    """A function renamed or folded away since the list was written: the whole
    program runs instead, which can only kill more, and the run says so."""
    if not test.functions:
        return
    done = subprocess.run([str(BUILD / "tests" / test.program), "-functions"], cwd=BUILD,
                          env=test_env(), capture_output=True, text=True, errors="replace")
    have = {line.strip().removesuffix("()") for line in done.stdout.splitlines()}
    missing = [f for f in test.functions if f not in have]
    if missing:
        say(f"  Aviso: {test.program} ya no tiene {', '.join(missing)}; "
            f"se corre el programa entero en lugar de «{test.text}».", report)
        test.functions = []
        test.text = test.program


def timeout_of(test):
    # Unoptimised builds vary with the load of the machine: room enough that a
    # slow run is not taken for a hang.
    return max(60.0, 4 * test.baseline + 30)


# ---------------------------------------------------------------- mutants

def load_mutants():
    try:
        mutants = json.loads(MUTANTS.read_text(encoding="utf-8"))
    except (OSError, ValueError) as e:
        raise Stop(f"No se pudo leer la lista de mutantes {MUTANTS}: {e}")
    seen = set()
    for m in mutants:
        for key in ("id", "file", "find", "replace", "description", "tests"):
            if key not in m:
                raise Stop(f"Al mutante {m.get('id', '?')} le falta «{key}» en {MUTANTS.name}.")
        if m["id"] in seen:
            raise Stop(f"El mutante {m['id']} está dos veces en {MUTANTS.name}.")
        seen.add(m["id"])
    return mutants


def run_mutant(m, tests, jobs, report):
    path = TREE / m["file"]
    head = f"{m['id']:<4} {m['file']:<48} {m['description']}"
    if not path.is_file():
        say(f"{head}\n     NO APLICA: el archivo no existe en este árbol", report)
        return "no aplica"
    original = path.read_bytes()
    text = original.decode("utf-8")
    found = text.count(m["find"])
    if found != 1:
        say(f"{head}\n     NO APLICA: el fragmento aparece {found} veces en el archivo", report)
        return "no aplica"
    start = time.monotonic()
    try:
        path.write_bytes(text.replace(m["find"], m["replace"], 1).encode("utf-8"))
        targets = [CORE] + sorted({t.program for t in tests})
        if not build(targets, jobs, LOGS / f"{m['id']}-compilar.txt"):
            say(f"{head}\n     NO COMPILA (vea registros/{m['id']}-compilar.txt; no cuenta)", report)
            return "no compila"
        built = time.monotonic() - start
        ran = []
        for t in tests:
            if t.text in ran:   # two entries that both became the whole program
                continue
            ran.append(t.text)
            outcome, took = run_test(t, timeout_of(t), LOGS / f"{m['id']}-{t.program}.txt")
            if outcome != "ok":
                how = "se colgó" if outcome == "colgada" else "falló"
                say(f"{head}\n     MUERTO por {t.text} ({how}; compilar {built:.0f} s, "
                    f"total {time.monotonic() - start:.0f} s)", report)
                return "muerto"
        say(f"{head}\n     VIVO: ninguna prueba lo notó ({', '.join(ran)}; "
            f"total {time.monotonic() - start:.0f} s)", report)
        return "vivo"
    finally:
        path.write_bytes(original)


# ---------------------------------------------------------------- main

def main():
    parser = argparse.ArgumentParser(
        description="Medición de mutantes: cuántos errores sembrados detectan las pruebas.")
    parser.add_argument("--desde", metavar="REV",
                        help="medir el árbol de esa revisión (git archive) en lugar del de trabajo")
    parser.add_argument("--solo", metavar="ID[,ID]",
                        help="medir solo esos mutantes (por ejemplo M03,M17)")
    parser.add_argument("--lista", action="store_true",
                        help="mostrar los mutantes y sus pruebas, sin compilar nada")
    parser.add_argument("-j", "--jobs", type=int, default=2,
                        help="procesos de compilación (2 como máximo)")
    args = parser.parse_args()
    jobs = max(1, min(args.jobs, 2))

    mutants = load_mutants()
    if args.solo:
        wanted = [s.strip() for s in args.solo.split(",") if s.strip()]
        unknown = [s for s in wanted if s not in {m["id"] for m in mutants}]
        if unknown:
            raise Stop(f"No hay mutantes con id {', '.join(unknown)} en {MUTANTS.name}.")
        mutants = [m for m in mutants if m["id"] in wanted]

    if args.lista:
        for m in mutants:
            print(f"{m['id']:<4} {m['file']:<48} {m['description']}")
            print(f"     pruebas: {' | '.join(m['tests'])}")
        return 0

    WORK.mkdir(parents=True, exist_ok=True)
    lock = open(WORK / ".cerrojo", "w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        raise Stop("Otra medición de mutantes está en curso en build/mutantes; "
                   "espere a que termine.")
    if LOGS.exists():
        shutil.rmtree(LOGS)
    LOGS.mkdir(parents=True)

    started = time.monotonic()
    with open(REPORT, "w", encoding="utf-8") as report:
        if args.desde:
            with tempfile.TemporaryDirectory(dir=WORK) as scratch:
                files, sha = revision_files(args.desde, Path(scratch))
                sync_tree(files)
            where = f"de la revisión {args.desde} ({sha[:10]})"
        else:
            sync_tree(working_tree_files())
            where = "del árbol de trabajo"
        say(f"Medición de mutantes {where}: {plural(len(mutants), 'mutante', 'mutantes')}.", report)

        # One Test per distinct invocation, shared by the mutants that list it.
        by_text = {}
        for m in mutants:
            m["_tests"] = [by_text.setdefault(" ".join(t.split()), Test(t)) for t in m["tests"]]
        programs = sorted({t.program for t in by_text.values()})

        say(f"Compilando la biblioteca y {plural(len(programs), 'programa', 'programas')} de prueba "
            f"(sin optimizar, -j{jobs})...", report)
        configure()
        t0 = time.monotonic()
        # The program too, once: a test reads its linked libraries. Mutants
        # never rebuild it; the tests run against the core library.
        if not build([CORE, "tarvenquil"] + programs, jobs, LOGS / "base-compilar.txt"):
            raise Stop("El árbol sin mutar no compila; vea build/mutantes/registros/"
                       "base-compilar.txt.")
        say(f"Compilado en {minutes(time.monotonic() - t0)}.", report)

        say("Línea base: cada prueba sin mutar...", report)
        for i, t in enumerate(by_text.values()):
            check_functions(t, report)
            outcome, took = run_test(t, 900, LOGS / f"base-{i:02d}-{t.program}.txt")
            if outcome != "ok":
                raise Stop(f"La línea base está en rojo: «{t.text}» "
                           f"{'se colgó' if outcome == 'colgada' else 'falló'} sin ningún mutante "
                           f"(vea build/mutantes/registros/base-{i:02d}-{t.program}.txt). "
                           "Sin pruebas en verde no se puede medir nada.")
            t.baseline = took
            say(f"  {t.text}: verde en {took:.1f} s", report)

        say("", report)
        counts = {}
        for m in mutants:
            m["_outcome"] = run_mutant(m, m["_tests"], jobs, report)
            counts[m["_outcome"]] = counts.get(m["_outcome"], 0) + 1

        killed, alive = counts.get("muerto", 0), counts.get("vivo", 0)
        measured = killed + alive
        score = f"{100 * killed / measured:.0f} %" if measured else "sin medir"
        say("", report)
        tally = ", ".join(plural(counts.get(k, 0), one, many) for k, one, many in (
            ("muerto", "muerto", "muertos"), ("vivo", "vivo", "vivos"),
            ("no compila", "no compila", "no compilan"), ("no aplica", "no aplica", "no aplican")))
        say(f"Resumen {where}: {plural(len(mutants), 'mutante', 'mutantes')}; {tally}.", report)
        say(f"Puntuación: {score} ({killed} de {measured} medidos). "
            f"Tiempo total: {minutes(time.monotonic() - started)}.", report)
        if alive:
            say("Vivos: " + ", ".join(m["id"] for m in mutants if m["_outcome"] == "vivo") + ".",
                report)
        say(f"Informe en {REPORT.relative_to(ROOT)}; salidas de cada prueba en "
            f"{LOGS.relative_to(ROOT)}/.", report)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Stop as e:
        print(f"mutantes: {e}", file=sys.stderr)
        try:
            with open(REPORT, "a", encoding="utf-8") as report:
                report.write(f"DETENIDO: {e}\n")
        except OSError:
            pass
        sys.exit(2)
    except KeyboardInterrupt:
        print("mutantes: interrumpido; el árbol copiado se repone en la próxima medición.",
              file=sys.stderr)
        sys.exit(130)
