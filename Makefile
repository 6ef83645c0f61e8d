# A thin front for people. CMake's presets do the work; see CMakePresets.json.
#
#   make run              build and start the reference camera (ARGS="--fps 25" passes options)
#   make test             build everything and run every test
.PHONY: help deps run test test-asan test-tsan test-arm coverage bench soak fuzz docs deb format lint clean

JOBS ?= $(shell nproc)
SOAK_MINUTES ?= 10

help:
	@echo "make run         build and start the reference camera; ARGS=\"--fps 25\" passes options"
	@echo "make test        build everything and run every test"
	@echo "make test-asan   the same under AddressSanitizer and UndefinedBehaviorSanitizer"
	@echo "make test-tsan   the same under ThreadSanitizer"
	@echo "make test-arm    cross-build for 32-bit ARM and run the tests under qemu"
	@echo "make coverage    run the library's tests and report which lines they reach"
	@echo "make bench       build optimised, run the benchmarks, and put their figures into the documents"
	@echo "make soak        load and break the camera and the recorder for SOAK_MINUTES ($(SOAK_MINUTES))"
	@echo "make fuzz        run each fuzz target for FUZZ_SECONDS (60)"
	@echo "make docs        draw the pictures, make build/docs/html, and try every example that the documents show"
	@echo "make deb         make Debian packages in build/deb"
	@echo "make format      lay out all sources"
	@echo "make lint        check layout, compile with clang, run clang-tidy and cppcheck"
	@echo "make deps        install the Debian packages; the others do so themselves"
	@echo "make clean       remove build/"

deps:
	@scripts/deps.sh

run: deps
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target netserver-camera
	exec build/release/Apps/Camera/netserver-camera $(ARGS)

test: deps
	cmake --preset dev
	cmake --build --preset dev --parallel $(JOBS)
	ctest --preset dev --parallel $(JOBS)

test-asan test-tsan: test-%: deps
	cmake --preset $*
	cmake --build --preset $* --parallel $(JOBS)
	ctest --preset $* --parallel $(JOBS)

test-arm:
	@scripts/deps.sh arm
	@scripts/arm-sysroot.sh
	cmake --preset arm
	cmake --build --preset arm --parallel $(JOBS)
	ctest --preset arm --parallel $(JOBS)

coverage:
	@scripts/deps.sh coverage
	scripts/coverage.sh

bench: deps
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS)
	Bench/run.sh
	python3 -B Bench/publish.py

soak: deps
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target netserver-camera netserver-nvr \
	  netserver-onvif-simulator soak_clock
	python3 -B Tests/Soak/soak.py --minutes $(SOAK_MINUTES)

fuzz:
	@scripts/deps.sh fuzz
	scripts/fuzz.sh

docs: deps
	docs/pictures/draw.sh docs/pictures
	docs/make.sh build/docs
	cmake --preset dev
	cmake --build --preset dev --parallel $(JOBS) --target docs_programs
	ctest --preset dev --tests-regex '^Docs'

deb:
	@scripts/deps.sh deb
	cmake --preset deb
	cmake --build --preset deb --parallel $(JOBS)
	packaging/make-debs.sh build/deb build/deb
	lintian --allow-root --fail-on error build/deb/*.deb

format:
	@scripts/deps.sh format
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

lint:
	@scripts/deps.sh lint
	scripts/lint.sh

clean:
	rm -rf build
