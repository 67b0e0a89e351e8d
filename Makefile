# The front door. CMake does the work; see CMakePresets.json.
#   make report   set up, build, write a report of a shipped example
#   make check    set up, build, run all tests
#   make build    set up, build
#   make bench    set up, build, run the benchmarks
#   make fuzz     set up, build, run the fuzz targets, each for TIME seconds (default 60)
#   make format   bring all sources into shape
#   make install  into PREFIX (default /usr/local), below DESTDIR

PREFIX ?= /usr/local
TIME ?= 60
EXAMPLE ?= sleepstudy
example := examples/$(EXAMPLE)
dictionary := $(wildcard $(example)/dictionary.json)

.PHONY: report check build bench fuzz format install clean

report: build
	build/bin/hierfit $(example)/model.pmml $(example)/result.xml \
	  $(if $(dictionary),--dictionary $(dictionary)) -o build/$(EXAMPLE).html
	@echo "The report: build/$(EXAMPLE).html"

build:
	scripts/setup build
	cmake --preset release -DHIERFIT_TESTS=OFF -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	cmake --build --preset release

check:
	scripts/setup build check bridges
	scripts/check

bench:
	scripts/setup build bench
	cmake --preset release -DHIERFIT_TESTS=OFF -DHIERFIT_BENCH=ON
	cmake --build --preset release
	build/bin/hierfit_bench

fuzz:
	scripts/setup build check
	scripts/fuzz $(TIME)

format:
	git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format-14 -i

install: build
	DESTDIR=$(DESTDIR) cmake --install build --prefix $(PREFIX)

clean:
	rm -rf build build-*
