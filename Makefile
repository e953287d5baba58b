# A short front for the presets. Each target first installs what packages.txt lists and is missing.
.DEFAULT_GOAL := test
.PHONY: abi asan bench bench-programs bounds clean coverage demo docs format fuzz instructions lint package \
  package-test packages pictures plot sealing test valgrind

packages:
	@scripts/install-packages.sh

demo: packages
	cmake --preset release
	cmake --build --preset release --target tqlabel tqlabel_tool examples
	scripts/demo.sh build/release

test: packages
	cmake --workflow --preset dev

asan: packages
	cmake --workflow --preset asan

valgrind: packages
	cmake --preset dev
	cmake --build --preset dev
	scripts/valgrind.sh build/dev

coverage: packages
	scripts/coverage.sh

# make fuzz SECONDS=n: each fuzzer for that long
SECONDS ?= 60
fuzz: packages
	scripts/fuzz.sh $(SECONDS)

bench-programs: packages
	cmake --preset release -DTQLABEL_BUILD_BENCH=ON
	cmake --build --preset release --target bench_times bench_instructions bench_memory \
	  bench_bounds

bench: bench-programs bounds
	build/release/bin/bench_memory > build/release/memory.json
	build/release/bin/bench_times --benchmark_enable_random_interleaving=true \
	  --benchmark_repetitions=9 --benchmark_min_time=0.05 \
	  --benchmark_out_format=json --benchmark_out=build/release/times.json >/dev/null
	bench/report.py build/release

# what the worst inputs cost; fails where a bound of docs/security.md is broken
bounds: bench-programs
	build/release/bin/bench_bounds > build/release/bounds.json
	bench/bounds.py build/release

instructions: bench-programs
	bench/instructions.py build/release/bin/bench_instructions --check

# MIB=n: the size of the file
MIB ?= 1024
sealing: packages
	cmake --preset release
	cmake --build --preset release --target tqlabel_tool
	bench/sealing.py build/release/bin/tqlabel $(MIB)

# from what bench has measured
plot:
	bench/plot.py build/release/times.json docs/performance.svg

# docs/anatomy.svg, from a label that the build makes, and docs/layers.svg
pictures: packages
	cmake --preset release
	cmake --build --preset release --target tqlabel tqlabel_tool
	TQLABEL_LIBRARY=build/release/lib/libtqlabel.so.7 PYTHONPATH=python \
	  docs/draw_anatomy.py build/release/bin/tqlabel --write
	docs/draw_layers.py --write

docs: packages
	cmake -S . -B build/docs -DTQLABEL_BUILD_DOCS=ON
	cmake --build build/docs --target docs

format: packages
	scripts/format.sh

lint: packages
	cmake --preset dev
	scripts/lint.sh build/dev

# Debian packages, in build/package
package: packages
	packaging/build.sh build/package

package-test: package
	packaging/test.sh build/package

# the binary interface against the baseline in abi/
abi: packages
	scripts/abi.sh

clean:
	rm -rf build
