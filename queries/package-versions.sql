-- Which versions of a package are there, and on how many machines?
--
-- Set: package, a pattern of LIKE ('%' is any), such as 'openssl' or 'linux-image-%'.
--
-- Versions are listed, not compared: their order is that of the package manager. The first and last name of the
-- machines stand for all; ask the table package for the others.

WITH parameters AS (SELECT 'base-files' AS package),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT k.name, k.version, k.software_element_id AS architecture, k.package_status, count(*) AS machines,
  min(l.machine) AS first_machine, max(l.machine) AS last_machine
FROM parameters p JOIN package k ON lower(k.name) LIKE lower(p.package) JOIN latest l ON l.id = k.run_id
GROUP BY k.name, k.version, k.software_element_id, k.package_status
ORDER BY k.name, machines DESC, k.version;

-- For these machines that is not the whole truth.
WITH asked(class) AS (VALUES ('MOLTA_Package')),
  latest AS (SELECT h.name AS machine, r.* FROM host h JOIN run r ON r.id =
    (SELECT max(n.id) FROM run n WHERE n.host_id = h.id AND n.collected_at = h.last_seen))
SELECT l.machine, a.class,
  CASE s.state WHEN 'complete' THEN l.state ELSE coalesce(s.state, 'not known to its plugins') END AS state,
  coalesce(s.reason, l.reason) AS reason
FROM latest l CROSS JOIN asked a LEFT JOIN class_state s ON s.run_id = l.id AND s.class = a.class
WHERE coalesce(s.state, '') <> 'complete' OR l.reason_code IN ('file changed', 'instances lost', 'interrupted')
ORDER BY l.machine, a.class;
