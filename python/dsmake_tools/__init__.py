"""What the programs dsprepare and dsextract are made of."""

VERSION = "22.8.0"
