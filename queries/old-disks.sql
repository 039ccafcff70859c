-- Which disks are older than a day?
--
-- Set: day, as year-month-day in ten characters.
--
-- No disk tells when it was made. What is known is since when it is in its machine: since the collection that had it
-- first, by the table change, or at least since the machine was first seen, or since its disks could not be compared
-- with those before for the last time. "older" is true for those seen before the day. "not known" is a disk that the
-- machine already had at that time, on that day or later. Disks that were added since are not listed, even if they
-- were used elsewhere before.

WITH parameters AS (SELECT '2026-01-01' AS day),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen)),
  added AS (SELECT c.host_id, v.property, v.new AS value, max(c.changed_at) AS added_at
    FROM change c JOIN change v ON v.run_id = c.run_id AND v.class = c.class AND v.path = c.path AND v.op = c.op
    WHERE c.class = 'MOLTA_DiskDrive' AND c.op = 'added' AND c.property IS NULL
      AND v.property IN ('SerialNumber', 'DeviceID')
    GROUP BY c.host_id, v.property, v.new),
  not_compared AS (SELECT host_id, max(changed_at) AS last_at FROM change
    WHERE op = 'not compared' AND coalesce(class, '') IN ('', 'MOLTA_DiskDrive') GROUP BY host_id),
  known AS (SELECT l.machine, d.device_id, d.model, d.serial_number, d.size_bytes, a.added_at,
      coalesce(a.added_at, n.last_at, h.first_seen) AS known_since
    FROM latest l JOIN host h ON h.id = l.host_id JOIN disk_drive d ON d.run_id = l.id
    LEFT JOIN not_compared n ON n.host_id = l.host_id
    LEFT JOIN added a ON a.host_id = l.host_id
      AND a.property = CASE WHEN d.serial_number IS NULL THEN 'DeviceID' ELSE 'SerialNumber' END
      AND a.value = coalesce(d.serial_number, d.device_id))
SELECT k.machine, k.device_id, k.model, k.serial_number, k.size_bytes, k.known_since,
  CASE WHEN substr(CAST(k.known_since AS TEXT), 1, 10) < p.day THEN 'older' ELSE 'not known' END AS answer
FROM known k CROSS JOIN parameters p
WHERE k.added_at IS NULL OR substr(CAST(k.known_since AS TEXT), 1, 10) < p.day
ORDER BY answer DESC, k.known_since, k.machine, k.device_id;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_DiskDrive')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
