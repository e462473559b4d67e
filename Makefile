# Convenience targets over CMake. Every target builds what it needs first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 30
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_GEN  := cmake -S . -DCMAKE_EXPORT_COMPILE_COMMANDS=ON

.PHONY: all release deps test asan tsan fuzz bench spell-quality demo install package clean

all: release

deps:
	bash scripts/install-deps.sh

# Every build installs what a bare machine lacks first (the script skips
# what is present), so `make demo` and `make test` work on a fresh machine.
release: deps
	$(CMAKE_GEN) -B $(BUILD) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD) -j $(JOBS)

test: release
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

asan: deps
	$(CMAKE_GEN) -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTARVOS_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

tsan: deps
	$(CMAKE_GEN) -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTARVOS_TSAN=ON
	cmake --build $(TSAN_BUILD) -j $(JOBS)
	cd $(TSAN_BUILD) && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
	  ctest --output-on-failure -j $(JOBS)

fuzz: deps
	CC=clang CXX=clang++ $(CMAKE_GEN) -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTARVOS_FUZZ=ON -DTARVOS_BUILD_TESTS=OFF
	cmake --build $(FUZZ_BUILD) --target fuzz_all -j $(JOBS)
	bash scripts/fuzz.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

bench: release
	cmake --build $(BUILD) --target tarvos_bench tarvos_bench_dict tarvos_bench_seg tarvos_bench_docx tarvos_bench_result tarvos_bench_format tarvos_bench_rules tarvos_bench_keyscan tarvos_bench_revise tarvos_bench_throughput -j $(JOBS)
	bash scripts/bench.sh $(BUILD)

# Spelling quality on sentences of the shared corpus: margins are tuned on the
# tuning half; the figures to report are those of the test half.
CORPUS ?= ../shared/corpus/real
spell-quality: release
	cmake --build $(BUILD) --target tarvos_spell_eval -j $(JOBS)
	python3 scripts/spell_set.py $(CORPUS) $(BUILD)/data $(BUILD)/spellset
	@echo "tuning half:"; $(BUILD)/bench/tarvos_spell_eval $(BUILD)/data $(BUILD)/spellset/tune.tsv
	@echo "test half:"; $(BUILD)/bench/tarvos_spell_eval $(BUILD)/data $(BUILD)/spellset/test.tsv

demo: release
	bash scripts/demo.sh $(BUILD)

# make install PREFIX=/some/where installs there instead of the configured prefix.
install: release
	cmake --install $(BUILD) $(if $(PREFIX),--prefix $(PREFIX))

# Two Debian packages in $(BUILD): tarvos (library, data, tools) and
# libtarvos-dev; lintian looks at both when it is installed.
package: release
	cd $(BUILD) && cpack -G DEB
	@if command -v lintian >/dev/null; then lintian --fail-on error $(BUILD)/*.deb; else echo "lintian not installed: packages not linted"; fi

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(FUZZ_BUILD)
