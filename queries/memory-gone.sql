-- Which memory disappeared?
--
-- Set: since, a day as year-month-day in ten characters, such as that of last week. A collection of that day or later
-- is asked for what is no more there than in the one before.
--
-- Modules that were removed, by their names (the table change has their properties, too), and totals that changed:
-- those of virtual machines, which have no modules. A module that was moved to another slot, or could not be read, did
-- not disappear.

WITH parameters AS (SELECT '2026-01-01' AS since),
  recent AS (SELECT h.name AS machine, c.* FROM change c JOIN host h ON h.id = c.host_id CROSS JOIN parameters p
    WHERE substr(CAST(c.changed_at AS TEXT), 1, 10) >= p.since)
SELECT machine, changed_at, previous_at, 'removed' AS what, old AS before, NULL AS after
FROM recent WHERE class = 'MOLTA_PhysicalMemory' AND op = 'removed' AND property IS NULL
UNION ALL
SELECT machine, changed_at, previous_at, property, old, new
FROM recent WHERE class = 'MOLTA_SystemMemory' AND op = 'changed' AND property IN ('TotalSize', 'InstalledSize')
ORDER BY machine, changed_at, what, before;

-- For these machines that is not the whole truth: modules that could not be compared, classes that are not complete
-- now, and machines that were first seen since then, or not seen any more.
WITH parameters AS (SELECT '2026-01-01' AS since),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  asked(class) AS (VALUES ('MOLTA_PhysicalMemory'), ('MOLTA_SystemMemory'))
SELECT h.name AS machine, c.class, 'not compared' AS state,
  coalesce(c.old, '') || ' -> ' || coalesce(c.new, '') AS reason
FROM change c JOIN host h ON h.id = c.host_id CROSS JOIN parameters p
WHERE c.op IN ('not compared', 'unreadable') AND coalesce(c.class, '') IN (SELECT class FROM asked UNION ALL SELECT '')
  AND substr(CAST(c.changed_at AS TEXT), 1, 10) >= p.since
UNION ALL
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END,
  coalesce(s.reason, l.reason)
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
UNION ALL
SELECT h.name, NULL, 'first seen', CAST(h.first_seen AS TEXT) FROM host h CROSS JOIN parameters p
WHERE substr(CAST(h.first_seen AS TEXT), 1, 10) >= p.since
UNION ALL
SELECT h.name, NULL, 'last seen', CAST(h.last_seen AS TEXT) FROM host h CROSS JOIN parameters p
WHERE substr(CAST(h.last_seen AS TEXT), 1, 10) < p.since
ORDER BY 1, 2, 3;
