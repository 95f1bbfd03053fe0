# Every command sets up what it needs, and is quick when that is there. Nothing is written outside build/ except
# installed packages.
.DEFAULT_GOAL := build
SHELL := /bin/sh
SECONDS ?= 60

export CCACHE_DIR ?= $(CURDIR)/build/ccache
export CCACHE_BASEDIR := $(CURDIR)
compile = cmake --build --preset $(1) $(if $(2),--target $(2))
# A user's compiler may know more warnings than ours: only continuous integration stops at them here.
configure = cmake --preset $(1) -D CMAKE_C_COMPILER_LAUNCHER=ccache -D CMAKE_CXX_COMPILER_LAUNCHER=ccache \
    $(if $(CI),-D VL_WERROR=ON) >build/$(1).log 2>&1 || { cat build/$(1).log; exit 1; }

.PHONY: build sdk demo test bench faults fuzz soak lint coverage package package-test test-kit clean
set-up = @mkdir -p build && scripts/setup.sh

build:
	$(set-up) build
	@$(call configure,release)
	@$(call configure,native-release)
	@$(call compile,release,vl_product)
	@$(call compile,native-release,vl_product)
	@rm -rf build/dist
	@cmake --install build/release --prefix build/dist --component dist >/dev/null
	@cmake --install build/native-release --prefix build/dist --component dist >/dev/null

sdk:
	$(set-up) build
	@$(call configure,release)
	@$(call configure,native-release)
	@$(call compile,release,vl_sdk)
	@$(call compile,native-release,vl_sdk)
	@rm -rf build/sdk
	@cmake --install build/release --prefix build/sdk --component sdk >/dev/null
	@cmake --install build/native-release --prefix build/sdk --component sdk >/dev/null

demo: build
	$(set-up) demo
	@scripts/base-prefix.sh
	@scripts/demo.sh

test: build
	$(set-up) test
	@$(call configure,release)
	@$(call compile,release)
	@$(call configure,native)
	@$(call compile,native)
	@scripts/base-prefix.sh
	@scripts/run_tests.py native release

bench: build
	$(set-up) bench
	@$(call configure,release)
	@$(call configure,native-release)
	@$(call compile,release,vl_bench)
	@$(call compile,native-release,vl_bench)
	@scripts/base-prefix.sh
	@scripts/bench.py

lint:
	$(set-up) build lint
	@$(call configure,release)
	@scripts/lint.sh

fuzz:
	$(set-up) build test fuzz
	@$(call configure,fuzz)
	@$(call compile,fuzz,vl_fuzz)
	@scripts/fuzz.sh $(SECONDS)

faults: build
	$(set-up) test
	@$(call configure,release)
	@$(call compile,release,hostile_test)
	@$(call compile,release,faults_test)
	@scripts/base-prefix.sh
	@scripts/faults.sh

# SECONDS for the threads; the counted checks take as long as they take.
soak: build
	$(set-up) build test
	@$(call compile,release,system_test)
	@$(call compile,release,soak_test)
	@scripts/base-prefix.sh
	@scripts/soak.sh $(if $(filter file,$(origin SECONDS)),300,$(SECONDS))

coverage:
	$(set-up) build test coverage
	@$(call configure,coverage)
	@$(call compile,coverage)
	@$(call configure,coverage-native)
	@$(call compile,coverage-native)
	@scripts/base-prefix.sh
	@scripts/coverage.sh

package: build sdk
	$(set-up) package
	@scripts/package.sh

package-test: package
	@scripts/base-prefix.sh
	@scripts/package-test.sh
	@scripts/reproduce.sh

# For a machine with a real Windows.
test-kit: build
	$(set-up) test package
	@$(call compile,release)
	@scripts/test-kit.sh

clean:
	rm -rf build
