# The log of vel generate: the default view shows twenty lines and counts the
# rest, --log - shows them all, --no-log none; the failure's explanation is
# the same whatever the log shows.

# Every row diagnostic before the failure is in the log, none in the message.
$ generate {data}/wet.yaml --format none
= 1
! Using model for Wet to generate a conditional probability table
! (0,0): 0.166667 (min=0.00555556, max=0.327778)
! (0,1): 0.833333 (min=0.672222, max=0.994444)
! (1,0): 0.5 (min=0.338889, max=0.661111)
! (1,1): 0.5 (min=0.338889, max=0.661111)
! Node Wet does not have a (unique) state labeled `dyr'
! vel: Wet: error 34 (vel_error_invalid_expression): Node Wet does not have a (unique) state labeled `dyr'

$ generate {data}/wet.yaml --format none --log -
= 1
! Using model for Wet to generate a conditional probability table
! (0,0): 0.166667 (min=0.00555556, max=0.327778)
! (0,1): 0.833333 (min=0.672222, max=0.994444)
! (1,0): 0.5 (min=0.338889, max=0.661111)
! (1,1): 0.5 (min=0.338889, max=0.661111)
! Node Wet does not have a (unique) state labeled `dyr'
! vel: Wet: error 34 (vel_error_invalid_expression): Node Wet does not have a (unique) state labeled `dyr'

$ generate {data}/wet.yaml --format none --no-log
= 1
! vel: Wet: error 34 (vel_error_invalid_expression): Node Wet does not have a (unique) state labeled `dyr'

# Only the open evaluation line was written: the view ends it, and the code's
# description says why.
$ generate {data}/failing_utility.yaml
= 1
! Using model for Payoff to generate a utility table
! (1): evaluation failed
! vel: Payoff: error 36 (vel_error_division_by_zero): division by zero in a numeric expression

$ generate {data}/failing_utility.yaml --log -
= 1
! Using model for Payoff to generate a utility table
! (1): evaluation failed
! vel: Payoff: error 36 (vel_error_division_by_zero): division by zero in a numeric expression

$ generate {data}/failing_utility.yaml --no-log
= 1
! vel: Payoff: error 36 (vel_error_division_by_zero): division by zero in a numeric expression

# A list of nulls is a model with missing expressions, not an unspecified one.
$ generate {data}/null.yaml --no-log
= 1
! vel: C: error 34 (vel_error_invalid_expression): No expression at index 0

# Rows averaged over the sample points of the interval parent.
$ generate {data}/many_log_lines.yaml --format none
! Using model for Wet to generate a conditional probability table
! (0,0): 0.0166667 (min=0.000666667, max=0.0326667)
! (0,1): 0.983333 (min=0.967333, max=0.999333)
! (1,0): 0.05 (min=0.034, max=0.066)
! (1,1): 0.95 (min=0.934, max=0.966)
! (2,0): 0.0833333 (min=0.0673333, max=0.0993333)
! (2,1): 0.916667 (min=0.900667, max=0.932667)
! (3,0): 0.116667 (min=0.100667, max=0.132667)
! (3,1): 0.883333 (min=0.867333, max=0.899333)
! (4,0): 0.15 (min=0.134, max=0.166)
! (4,1): 0.85 (min=0.834, max=0.866)
! (5,0): 0.183333 (min=0.167333, max=0.199333)
! (5,1): 0.816667 (min=0.800667, max=0.832667)
! (6,0): 0.216667 (min=0.200667, max=0.232667)
! (6,1): 0.783333 (min=0.767333, max=0.799333)
! (7,0): 0.25 (min=0.234, max=0.266)
! (7,1): 0.75 (min=0.734, max=0.766)
! (8,0): 0.283333 (min=0.267333, max=0.299333)
! (8,1): 0.716667 (min=0.700667, max=0.732667)
! (9,0): 0.316667 (min=0.300667, max=0.332667)
! … 41 more log lines; use --log FILE to keep them all

$ generate {data}/many_log_lines.yaml --format none --log -
! Using model for Wet to generate a conditional probability table
! (0,0): 0.0166667 (min=0.000666667, max=0.0326667)
! (0,1): 0.983333 (min=0.967333, max=0.999333)
! (1,0): 0.05 (min=0.034, max=0.066)
! (1,1): 0.95 (min=0.934, max=0.966)
! (2,0): 0.0833333 (min=0.0673333, max=0.0993333)
! (2,1): 0.916667 (min=0.900667, max=0.932667)
! (3,0): 0.116667 (min=0.100667, max=0.132667)
! (3,1): 0.883333 (min=0.867333, max=0.899333)
! (4,0): 0.15 (min=0.134, max=0.166)
! (4,1): 0.85 (min=0.834, max=0.866)
! (5,0): 0.183333 (min=0.167333, max=0.199333)
! (5,1): 0.816667 (min=0.800667, max=0.832667)
! (6,0): 0.216667 (min=0.200667, max=0.232667)
! (6,1): 0.783333 (min=0.767333, max=0.799333)
! (7,0): 0.25 (min=0.234, max=0.266)
! (7,1): 0.75 (min=0.734, max=0.766)
! (8,0): 0.283333 (min=0.267333, max=0.299333)
! (8,1): 0.716667 (min=0.700667, max=0.732667)
! (9,0): 0.316667 (min=0.300667, max=0.332667)
! (9,1): 0.683333 (min=0.667333, max=0.699333)
! (10,0): 0.35 (min=0.334, max=0.366)
! (10,1): 0.65 (min=0.634, max=0.666)
! (11,0): 0.383333 (min=0.367333, max=0.399333)
! (11,1): 0.616667 (min=0.600667, max=0.632667)
! (12,0): 0.416667 (min=0.400667, max=0.432667)
! (12,1): 0.583333 (min=0.567333, max=0.599333)
! (13,0): 0.45 (min=0.434, max=0.466)
! (13,1): 0.55 (min=0.534, max=0.566)
! (14,0): 0.483333 (min=0.467333, max=0.499333)
! (14,1): 0.516667 (min=0.500667, max=0.532667)
! (15,0): 0.516667 (min=0.500667, max=0.532667)
! (15,1): 0.483333 (min=0.467333, max=0.499333)
! (16,0): 0.55 (min=0.534, max=0.566)
! (16,1): 0.45 (min=0.434, max=0.466)
! (17,0): 0.583333 (min=0.567333, max=0.599333)
! (17,1): 0.416667 (min=0.400667, max=0.432667)
! (18,0): 0.616667 (min=0.600667, max=0.632667)
! (18,1): 0.383333 (min=0.367333, max=0.399333)
! (19,0): 0.65 (min=0.634, max=0.666)
! (19,1): 0.35 (min=0.334, max=0.366)
! (20,0): 0.683333 (min=0.667333, max=0.699333)
! (20,1): 0.316667 (min=0.300667, max=0.332667)
! (21,0): 0.716667 (min=0.700667, max=0.732667)
! (21,1): 0.283333 (min=0.267333, max=0.299333)
! (22,0): 0.75 (min=0.734, max=0.766)
! (22,1): 0.25 (min=0.234, max=0.266)
! (23,0): 0.783333 (min=0.767333, max=0.799333)
! (23,1): 0.216667 (min=0.200667, max=0.232667)
! (24,0): 0.816667 (min=0.800667, max=0.832667)
! (24,1): 0.183333 (min=0.167333, max=0.199333)
! (25,0): 0.85 (min=0.834, max=0.866)
! (25,1): 0.15 (min=0.134, max=0.166)
! (26,0): 0.883333 (min=0.867333, max=0.899333)
! (26,1): 0.116667 (min=0.100667, max=0.132667)
! (27,0): 0.916667 (min=0.900667, max=0.932667)
! (27,1): 0.0833333 (min=0.0673333, max=0.0993333)
! (28,0): 0.95 (min=0.934, max=0.966)
! (28,1): 0.05 (min=0.034, max=0.066)
! (29,0): 0.983333 (min=0.967333, max=0.999333)
! (29,1): 0.0166667 (min=0.000666667, max=0.0326667)
