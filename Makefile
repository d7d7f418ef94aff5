# Two commands do everything on a fresh Debian 12: `make run` and `make test`. CMake presets stand behind them.
JOBS ?= $(shell nproc)

.PHONY: help run test wine wine32 screenshots pages pages-test times bench lint tsan fuzz sweep windows linux install package try-package sign packages pictures catalogue best_fit format clean
.DEFAULT_GOAL := help

help:
	@echo "make run      build for Linux and rehearse a complete install with printers on real sockets"
	@echo "make test     build for Windows and Linux, run all tests, check the Windows programs"
	@echo "make wine     run the real 64-bit program under Wine and hold it against the rehearsal"
	@echo "make wine32   the same for the 32-bit program, in an i386 root of 2 GB made with debootstrap"
	@echo "make screenshots  photograph every dialog in every language under Wine, into docs/pictures/"
	@echo "make lint     the layout of the sources, and clang-tidy for some of them"
	@echo "make tsan     the scenarios under ThreadSanitizer"
	@echo "make fuzz     feed the readers with made-up bytes: SECONDS each (60), TARGETS (all of fuzz/corpus)"
	@echo "make sweep    make every call of every road fail: RUNS of them (all), ROUNDS of installs and removals"
	@echo "make pages    the sample's runs, findings and log as pages to look at, in build/pages"
	@echo "make pages-test  look at them, and at hostile ones, in Chromium"
	@echo "make times    where the time of the last builds, tests and runs went"
	@echo "make bench    what the program and trk cost, as a table with peers and goals"
	@echo "make windows  the two Windows programs and the library, stripped, in dist/"
	@echo "make linux    the rehearsal tool alone, in build/linux"
	@echo "make install  trk with manual pages, samples and docs, below PREFIX (/usr/local)"
	@echo "make package  trk's Debian package, and a zip of the Windows programs, in dist/"
	@echo "make try-package  as root: install trk's package in a clean Debian root and use it there"
	@echo "make sign CERT=FILE KEY=FILE  sign the Windows programs, into dist/signed/"
	@echo "make format   bring the sources into the project's layout"
	@echo "make pictures draw the icon and the banner again"
	@echo "make catalogue sign the sample's driver package again, after a change to its files"
	@echo "make best_fit hold the layer's table of best fits against the code-page files that Wine brings"
	@echo "make packages install what the build needs from Debian's packages"
	@echo "make clean    remove build/ and dist/"

packages:
	@cmake/install_packages.sh

linux: packages
	@cmake/build.sh $(JOBS) linux

run: linux
	@cmake/timed.sh run rehearsal/run.sh

times:
	@cmake/times.sh

# SUBJECTS names the wanted ones of bench/speed.py. Ends in 1 when a figure misses its goal.
bench: windows
	@cmake/install_packages.sh debian-packages-bench.txt
	@cmake/build.sh $(JOBS) bench
	@bench/speed.py build/bench $(SUBJECTS)

# SECONDS bounds what clang-tidy may take beside the files that were changed.
lint: SECONDS ?= 60
lint: packages
	@cmake/timed.sh lint cmake/lint.sh $(SECONDS)

# The scenarios have the program's two threads in them; the sweep of failing calls, twenty times as long, has the same
# two over and over.
tsan: packages
	@mkdir -p build && cmake --preset tsan >build/tsan-configure.log
	@cmake/timed.sh build-tsan cmake --build --preset tsan --parallel $(JOBS) --target trk_scenario_tests
	@cmake/timed.sh tsan build/tsan/tests/trk_scenario_tests --gtest_brief=1 '--gtest_filter=-Roads/FaultSweep.*'

# By clang, whose library makes up the inputs. FUZZ_KEEP=1 adds the inputs that reach new places to fuzz/corpus.
fuzz: SECONDS ?= 60
fuzz: packages
	@cmake/install_packages.sh debian-packages-fuzz.txt
	@mkdir -p build && cmake --preset fuzz >build/fuzz-configure.log
	@cmake/timed.sh build-fuzz cmake --build --preset fuzz --parallel $(JOBS) --target trk_fuzz
	@TRK_FUZZ_KEEP=$(FUZZ_KEEP) fuzz/run.sh $(SECONDS) $(TARGETS)

# RUNS=1500 ROUNDS=150 takes half a minute and belongs to continuous integration; the whole takes an hour.
sweep: RUNS ?= all
sweep: ROUNDS ?= 10000
sweep: packages
	@mkdir -p build && cmake --preset test >build/test-configure.log
	@cmake/timed.sh build-sweep cmake --build --preset test --parallel $(JOBS) \
		--target trk_sweep $(if $(filter all,$(RUNS)),--target trk_rehearsal_tests)
	@cmake/timed.sh sweep sweep/run.sh $(RUNS) $(ROUNDS)

windows: packages
	@cmake/build.sh $(JOBS) windows-i686 windows-x86_64
	@cmake/collect_dist.sh

# The tests of the Windows programs read what `windows` has put into dist/. ctest comes last, so that its closing
# lines end the output.
test: windows
	@cmake/build.sh $(JOBS) test
	@cmake/test_share.sh
	@cmake/timed.sh tests ctest --preset test --parallel $(JOBS) --output-on-failure

# SCENARIOS names the wanted ones of acceptance/scenarios; without it all run. REHEARSAL=test rehearses with what
# `make test` has built, sanitizers and all, and saves a build.
REHEARSAL ?= linux
CONTRACT = $(if $(SCENARIOS),$(if $(filter contract,$(SCENARIOS)),--target trk_contract),--target trk_contract)
wine: packages
	@cmake/install_packages.sh debian-packages-wine.txt
	@cmake/build.sh $(JOBS) $(REHEARSAL) windows-x86_64
	@cmake --build --preset $(REHEARSAL) --parallel $(JOBS) --target trk_acceptance
	@cmake/timed.sh build-acceptance \
		cmake --build --preset windows-x86_64 --parallel $(JOBS) --target trk_acceptance $(CONTRACT)
	@TRK_LINUX_BUILD=build/$(REHEARSAL) cmake/timed.sh wine acceptance/run_wine.sh $(SCENARIOS)

# SCENARIOS is for the road on which the 32-bit program installs by itself.
wine32: packages
	@cmake/install_packages.sh debian-packages-wine32.txt
	@cmake/build.sh $(JOBS) linux windows-i686 windows-x86_64
	@cmake --build --preset linux --parallel $(JOBS) --target trk_acceptance
	@cmake --build --preset windows-i686 --parallel $(JOBS) --target trk_acceptance $(CONTRACT)
	@cmake --build --preset windows-x86_64 --parallel $(JOBS) --target trk_acceptance
	@acceptance/run_wine32.sh $(SCENARIOS)

# The tool is the one of REHEARSAL's build, as above.
pages: packages
	@cmake/build.sh $(JOBS) $(REHEARSAL)
	@rehearsal/pages/sample_pages.sh build/$(REHEARSAL)/rehearsal/trk build/pages

pages-test: pages
	@cmake/install_packages.sh debian-packages-pages.txt
	@command -v npm >/dev/null || cmake/install_packages.sh debian-packages-node.txt
	@cmake/timed.sh pages tests/pages/run.sh build/$(REHEARSAL)/rehearsal/trk

# LANGUAGES names the wanted ones, such as de or en_gb, VISITS folders of acceptance/pictures/visits; without them all.
screenshots: packages
	@cmake/install_packages.sh debian-packages-wine.txt
	@cmake/install_packages.sh debian-packages-screenshots.txt
	@cmake/build.sh $(JOBS) linux windows-x86_64
	@cmake --build --preset windows-x86_64 --parallel $(JOBS) --target trk_winspool --target trk_pictures
	@VISITS="$(VISITS)" acceptance/take_screenshots.sh $(LANGUAGES)

# The manual pages come from the help of the program that was just built.
PREFIX ?= /usr/local
install: linux
	@cmake/install_packages.sh debian-packages-packaging.txt
	@cmake --build --preset linux --target trk_manuals
	@DESTDIR=$(DESTDIR) cmake --install build/linux --prefix $(PREFIX)

package: linux windows
	@cmake/install_packages.sh debian-packages-packaging.txt
	@packaging/debian_package.sh
	@packaging/windows_zip.sh

try-package: package
	@cmake/install_packages.sh debian-packages-wine32.txt
	@packaging/try_package.sh

sign: windows
	@cmake/install_packages.sh debian-packages-packaging.txt
	@packaging/sign.sh "$(CERT)" "$(KEY)"

pictures: packages
	@cmake/install_packages.sh debian-packages-pictures.txt
	@tools/draw_pictures.sh $(CURDIR)/src/resources

# With a certificate made on the spot, so that each run gives another catalogue.
catalogue: packages
	@cmake --preset linux >/dev/null
	@cmake --build --preset linux --target make_catalogue
	@build/linux/tools/make_catalogue samples/medium/Drivers lbl.cat

# WRITE=1 puts what was made in the table's place.
BEST_FIT := platform/calls/text/best_fit_table.cpp
best_fit:
	@cmake/install_packages.sh debian-packages-wine.txt
	@mkdir -p build
	@$(CXX) -std=c++20 -O1 tools/best_fit_table.cpp -o build/best_fit_table
	@build/best_fit_table /usr/share/wine/nls > build/best_fit_table.txt
	@$(if $(WRITE),cp build/best_fit_table.txt $(BEST_FIT))
	@cmp build/best_fit_table.txt $(BEST_FIT) && echo "the table of best fits is as the code-page files have it"

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf build dist
