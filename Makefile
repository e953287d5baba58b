# A short front for the presets. Each target first installs what packages.txt lists and is missing.
.DEFAULT_GOAL := test
.PHONY: asan clean demo docs format lint packages test valgrind

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

docs: packages
	cmake -S . -B build/docs -DTQLABEL_BUILD_DOCS=ON
	cmake --build build/docs --target docs

format: packages
	scripts/format.sh

lint: packages
	cmake --preset dev
	scripts/lint.sh build/dev

clean:
	rm -rf build
