#!/bin/sh
# Fetches the grammar of Swift, pinned by version and hash, for a parser that checks the syntax of what we write in
# Swift: no compiler of Swift is packaged for Debian 12.
#
#   fetch_swift_grammar.sh CACHE    -> CACHE/swift-HASH/src/...; prints the directory
set -eu

package=tree-sitter-swift
version=0.7.1
file=$package-$version.tgz
sha512=a6778a553b866a6681b2aaaa7c1f41bcd42392dce1ff42153d1e788cb07916afc94c34306077745a8ea95726798c06296f3b73abeac9feba4bf6bbb14e64a82b

mkdir -p "$1"
cache=$(cd "$1" && pwd)
grammar=$cache/swift-$(echo "$sha512" | cut -c1-16)

if [ ! -d "$grammar" ]; then
    [ -e "$cache/$file" ] || (cd "$cache" && npm pack --loglevel=error "$package@$version" >/dev/null) || {
        echo "npm could not fetch $package@$version; check the network, or put $file into $cache" >&2
        exit 2
    }
    if ! echo "$sha512  $cache/$file" | sha512sum --check --status; then
        rm "$cache/$file"
        echo "$file is not the pinned file; it was removed and not used" >&2
        exit 2
    fi
    rm -rf "$grammar.new"
    mkdir "$grammar.new"
    tar xzf "$cache/$file" -C "$grammar.new" --strip-components=1 package/LICENSE package/src
    mv "$grammar.new" "$grammar"
    rm "$cache/$file"
fi
echo "$grammar"
