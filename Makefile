# Every command a contributor needs; `make help` lists them.

FOLDER ?= $(CURDIR)
PHRASE ?= documents about privacy
DATA   ?= $(or $(XDG_DATA_HOME),$(HOME)/.local/share)/Ardeno
JOBS   ?= $(shell nproc)

.DEFAULT_GOAL := help

.PHONY: help
help: ## list these commands
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "  make %-11s %s\n", $$1, $$2 }' $(MAKEFILE_LIST)

.PHONY: run
run: release ## build, index FOLDER=, answer PHRASE= and open the window
	build/release/bin/tovictl --data-dir "$(DATA)" index "$(FOLDER)"
	build/release/bin/tovictl --data-dir "$(DATA)" search --limit 10 "$(PHRASE)"
	if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then build/release/bin/tovi --data-dir "$(DATA)"; fi

.PHONY: screenshots
screenshots: ## draw every screen anew into docs/screenshots
	scripts/bootstrap --developer
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target tovi-screenshots tovi-decoder
	scripts/make-screenshots

.PHONY: test
test: ## install what is missing, build with sanitizers, run every test
	scripts/bootstrap
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev -j $(JOBS)

.PHONY: release
release: ## build the optimised programs into build/release/bin
	scripts/bootstrap
	cmake --preset release
	cmake --build --preset release -j $(JOBS)

.PHONY: install
install: release ## install below PREFIX= (/usr/local) and DESTDIR=
	cmake --install build/release --prefix "$(or $(PREFIX),/usr/local)"

.PHONY: package
package: release ## build a Debian package in build/release
	cd build/release && cpack

.PHONY: tsan
tsan: ## run the tests under ThreadSanitizer
	scripts/bootstrap
	cmake --preset tsan
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan -j $(JOBS)

.PHONY: bench
bench: ## build and run the benchmarks
	scripts/bootstrap --developer
	cmake --preset bench
	cmake --build --preset bench -j $(JOBS)
	bench/run

.PHONY: fuzz
fuzz: ## build the fuzz targets and run each for SECONDS= (60)
	scripts/bootstrap --developer
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	scripts/fuzz $(or $(SECONDS),60)

SOURCES = $(shell git ls-files '*.cpp' '*.h')

.PHONY: format
format: ## format every source file
	clang-format -i $(SOURCES)

.PHONY: lint
lint: ## check the format and run clang-tidy
	scripts/bootstrap --developer
	clang-format --dry-run -Werror $(SOURCES)
	cmake --preset dev
	clang-tidy -p build/dev --quiet $(filter %.cpp,$(SOURCES))
