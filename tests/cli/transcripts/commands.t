# Argument errors, help and version, and vel check.

# Every argument error exits with 2 and leaves stdout empty.
$
= 2
! A subcommand is required
! Run with --help for more information.

$ frobnicate
= 2
! A subcommand is required
! Run with --help for more information.

$ generate
= 2
! FILE is required
! Run with --help for more information.

$ generate {data}/two_failures.yaml extra
= 2
! The following argument was not expected: extra
! Run with --help for more information.

$ generate {data}/two_failures.yaml --format xml
= 2
! --format: xml not in {text,json,csv,none}
! Run with --help for more information.

$ generate {data}/two_failures.yaml --log x.log --no-log
= 2
! --log excludes --no-log
! Run with --help for more information.

$ generate {data}/two_failures.yaml --node
= 2
! --node: 1 required TEXT missing
! Run with --help for more information.

$ generate {data}/two_failures.yaml --colour
= 2
! The following argument was not expected: --colour
! Run with --help for more information.

$ evaluate {data}/two_failures.yaml
= 2
! --node is required
! Run with --help for more information.

$ evaluate {data}/two_failures.yaml --node Volume --mode guess
= 2
! --mode: guess not in {inference,configured}
! Run with --help for more information.

$ --version
> vel 0.1.0

# Each mistake at the item of the file it concerns, with the generator's own
# reason for what generation would refuse; --strict changes nothing here.
$ check {data}/mistakes.yaml
= 1
! {data}/mistakes.yaml:3:54: node Wear: warning: the table sums to 0.9, not 1
! {data}/mistakes.yaml:4:33: node Soil: warning: duplicate state label "dry" (states 0 and 2)
! {data}/mistakes.yaml:4:59: node Soil: warning: the table has a negative entry (-0.3)
! {data}/mistakes.yaml:11:21: node Leak: warning: Wear has no state labeled "hihg"
! {data}/mistakes.yaml:12:85: node Weights: error: Negative value in Distribution expression (state 1)
! {data}/mistakes.yaml:13:83: node Arity: error: The number of arguments of a Distribution expression must match the number of states
! {data}/mistakes.yaml:14:100: node Noisy: error: A NoisyOR distribution can only be applied to boolean nodes
! {data}/mistakes.yaml:15:87: node Count: error: The Normal distribution can only be applied to interval nodes
! {data}/mistakes.yaml:16:89: node Level: error: Truncation is not supported for the Poisson distribution
! {data}/mistakes.yaml:17:93: node Spread: error: Variance for a Normal distribution must be positive (observed: -1)
! {data}/mistakes.yaml:18:100: node Trials: error: the node's states do not cover a distribution's support, or do not suit a discrete distribution
! {data}/mistakes.yaml:24:21: node Typed: error: No expression at index 0
! {data}/mistakes.yaml:24:27: node Typed: error: Invalid expression at index 1: argument 1 of Normal must be a number, but `"a"' is a label

$ check {data}/mistakes.yaml --strict
= 1
! {data}/mistakes.yaml:3:54: node Wear: warning: the table sums to 0.9, not 1
! {data}/mistakes.yaml:4:33: node Soil: warning: duplicate state label "dry" (states 0 and 2)
! {data}/mistakes.yaml:4:59: node Soil: warning: the table has a negative entry (-0.3)
! {data}/mistakes.yaml:11:21: node Leak: warning: Wear has no state labeled "hihg"
! {data}/mistakes.yaml:12:85: node Weights: error: Negative value in Distribution expression (state 1)
! {data}/mistakes.yaml:13:83: node Arity: error: The number of arguments of a Distribution expression must match the number of states
! {data}/mistakes.yaml:14:100: node Noisy: error: A NoisyOR distribution can only be applied to boolean nodes
! {data}/mistakes.yaml:15:87: node Count: error: The Normal distribution can only be applied to interval nodes
! {data}/mistakes.yaml:16:89: node Level: error: Truncation is not supported for the Poisson distribution
! {data}/mistakes.yaml:17:93: node Spread: error: Variance for a Normal distribution must be positive (observed: -1)
! {data}/mistakes.yaml:18:100: node Trials: error: the node's states do not cover a distribution's support, or do not suit a discrete distribution
! {data}/mistakes.yaml:24:21: node Typed: error: No expression at index 0
! {data}/mistakes.yaml:24:27: node Typed: error: Invalid expression at index 1: argument 1 of Normal must be a number, but `"a"' is a label

# Off by 0.003: beyond rounding, though close to 1; a warning fails only
# under --strict.
$ check {data}/warned.yaml
! {data}/warned.yaml:2:30: node A: warning: the table sums to 1.003, not 1

$ check {data}/warned.yaml --strict
= 1
! {data}/warned.yaml:2:30: node A: warning: the table sums to 1.003, not 1

# A parent's bad state values, at the parent's states; a table too large to
# try.
$ check {data}/states.yaml --max-entries 10
= 1
! {data}/states.yaml:3:34: node Dose: error: The state values of node Dose do not form an increasing sequence.
! {data}/states.yaml:5:58: node Rash: error: the table would have 12 entries (48 bytes), more than --max-entries 10; not generated

$ check {data}/failing_utility.yaml
= 1
! {data}/failing_utility.yaml:10:27: node Payoff: error: division by zero in a numeric expression
