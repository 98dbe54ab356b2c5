# Set-up and build in one step on a fresh Debian machine.
BUILD ?= build
JOBS  ?= $(shell nproc)
PKGS  := cmake ninja-build g++ make qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libsqlite3-dev libgl-dev libsodium-dev pkg-config poppler-utils qt6-translations-l10n \
         postgresql postgresql-client libqt6sql6-psql libpq-dev

.PHONY: all deps configure build run test bench mutantes clean

all: build

deps:
	@missing=""; for p in $(PKGS); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Instalando:$$missing"; \
	  if [ "$$(id -u)" = 0 ]; then SUDO=""; else SUDO="sudo"; fi; \
	  $$SUDO apt-get update -qq && DEBIAN_FRONTEND=noninteractive $$SUDO apt-get install -y -qq $$missing; \
	fi

configure: deps
	@[ -f $(BUILD)/CMakeCache.txt ] || cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./$(BUILD)/tarvenquil $(ARGS)

# Every test program runs twice: on the embedded store and on a private
# PostgreSQL server that the tests start and stop themselves.
test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)
	@cd $(BUILD) && echo "Pruebas aprobadas: $$(ctest -N -L sqlite | grep -c 'Test *#') en SQLite," \
	  "$$(ctest -N -L postgresql | grep -c '_pg$$') en PostgreSQL."

# Times every path a user waits on against the same SQL run bare, on a large
# store made once in $(BUILD)/bench/; fails when a path misses its target.
# ARGS="--only TEXT" times only the paths whose name holds TEXT; "--rebuild"
# makes the store again; "--motor postgresql" runs every path on a copy of the
# store on a private PostgreSQL server (in build/bench/, kept between runs).
bench: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ./bench/tarvenquil_bench $(ARGS)

# Mutation check of the tests, not part of make test: one slip at a time from
# tools/mutantes/mutantes.json is seeded into a copy of the tree, built apart
# in build/mutantes, and the tests that cover it must notice. Prints and writes
# build/mutantes/informe.txt; exits 0 whatever survives. DESDE=<rev> measures
# that revision instead of the working tree; SOLO=M03,M17 only those mutants.
MUT_PKGS := python3 ccache
mutantes: deps
	@missing=""; for p in $(MUT_PKGS); do dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Instalando:$$missing"; \
	  if [ "$$(id -u)" = 0 ]; then SUDO=""; else SUDO="sudo"; fi; \
	  $$SUDO apt-get update -qq && DEBIAN_FRONTEND=noninteractive $$SUDO apt-get install -y -qq $$missing; \
	fi
	python3 tools/mutantes/mutantes.py $(if $(DESDE),--desde $(DESDE)) $(if $(SOLO),--solo $(SOLO)) $(ARGS)

clean:
	rm -rf $(BUILD)
