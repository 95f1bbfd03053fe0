# Every command sets up what it needs and is quick when that is there. Nothing is written outside build/ but for
# installed packages.
.DEFAULT_GOAL := build
SHELL := /bin/sh
SECONDS ?= 60
export CMAKE_C_COMPILER_LAUNCHER = $(shell command -v ccache)
export CMAKE_CXX_COMPILER_LAUNCHER = $(shell command -v ccache)
export CCACHE_DIR ?= $(CURDIR)/build/ccache
export CCACHE_BASEDIR = $(CURDIR)

configure = cmake --preset $(1) >build/$(1).log 2>&1 || { cat build/$(1).log; exit 1; }
compile = cmake --build --preset $(1)

.PHONY: build demo test bench fuzz lint coverage package clean

build/.set-up: scripts/setup.sh scripts/packages.txt
	@mkdir -p build
	@scripts/setup.sh build
	@touch $@

build: build/.set-up
	@$(call configure,release)
	@$(compile) 2>&1
	@$(call configure,native-release)

clean:
	rm -rf build
