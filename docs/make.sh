#!/bin/sh
# Makes the documents: pictures, plots, and one site with the pages and the reference of the public headers, in
# DIRECTORY/html. Ends with an error when Doxygen has a complaint, such as a public name without a word about it.
#
#   docs/make.sh [DIRECTORY]      build/docs
set -eu
cd "$(dirname "$0")/.."
DOCS_OUT=${1:-build/docs}
DOCS_VERSION=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
export DOCS_OUT DOCS_VERSION

rm -rf "$DOCS_OUT/pages" "$DOCS_OUT/html"
mkdir -p "$DOCS_OUT"
docs/pictures/draw.sh "$DOCS_OUT/pictures"
DOCS_PAGES=$(python3 -B docs/pages.py "$DOCS_OUT/pages" | tr '\n' ' ')
export DOCS_PAGES
doxygen docs/Doxyfile
echo "documents: $DOCS_OUT/html/index.html"
